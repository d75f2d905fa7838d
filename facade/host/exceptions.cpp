#include "ostrel/quarrix/exceptions.h"

namespace Ostrel::Quarrix::Collisions {

namespace {

std::string Named(const char* kind, Text name) {
    return name.View().empty() ? std::string() : std::string(kind) + " '" + name.ToString() + "'";
}

}  // namespace

Exception::Exception(Text message) : Exception("Exception", message, {}) {}
Exception::Exception(Text class_name, Text message, const std::string& about)
    : message_(message.View()),
      description_(class_name.View()) {
    if (!message_.empty()) description_ += ": " + message_;
    if (!about.empty()) description_ += " (" + about + ")";
}
Exception::~Exception() = default;

ArgumentException::ArgumentException(Text message, Text param_name)
    : ArgumentException("ArgumentException", message, param_name) {}
ArgumentException::ArgumentException(Text class_name, Text message, Text param_name)
    : Exception(class_name, message, Named("parameter", param_name)),
      param_name_(param_name.View()) {}
ArgumentException::~ArgumentException() = default;

ArgumentNullException::ArgumentNullException(Text param_name)
    : ArgumentException("ArgumentNullException", "Value can not be null", param_name) {}
ArgumentNullException::~ArgumentNullException() = default;

ArgumentOutOfRangeException::ArgumentOutOfRangeException(Text param_name, Text message)
    : ArgumentException("ArgumentOutOfRangeException", message, param_name) {}
ArgumentOutOfRangeException::~ArgumentOutOfRangeException() = default;

NullReferenceException::NullReferenceException(Text message)
    : Exception("NullReferenceException", message, {}) {}
NullReferenceException::~NullReferenceException() = default;

IndexOutOfRangeException::IndexOutOfRangeException(Text message)
    : Exception("IndexOutOfRangeException", message, {}) {}
IndexOutOfRangeException::~IndexOutOfRangeException() = default;

KeyNotFoundException::KeyNotFoundException(Text message) : Exception("KeyNotFoundException", message, {}) {}
KeyNotFoundException::~KeyNotFoundException() = default;

InvalidCastException::InvalidCastException(Text message) : Exception("InvalidCastException", message, {}) {}
InvalidCastException::~InvalidCastException() = default;

NotImplementedException::NotImplementedException(Text message)
    : Exception("NotImplementedException", message, {}) {}
NotImplementedException::~NotImplementedException() = default;

InvalidOperationException::InvalidOperationException(Text message)
    : InvalidOperationException("InvalidOperationException", message, {}) {}
InvalidOperationException::InvalidOperationException(Text class_name, Text message, const std::string& about)
    : Exception(class_name, message, about) {}
InvalidOperationException::~InvalidOperationException() = default;

ObjectDisposedException::ObjectDisposedException(Text object_name)
    : InvalidOperationException("ObjectDisposedException", nullptr, Named("object", object_name)),
      object_name_(object_name.View()) {}
ObjectDisposedException::~ObjectDisposedException() = default;

}  // namespace Ostrel::Quarrix::Collisions
