#include "tarn/exception.h"

namespace tarn {

namespace {

std::unique_ptr<Exception> CloneOf(const Exception* exception) {
    return std::unique_ptr<Exception>(exception ? exception->clone() : nullptr);
}

}  // namespace

Exception::Exception(const std::string& message) : message_(message) {}

Exception::Exception(const std::string& message, const std::string& argument) : message_(message) {
    if (!argument.empty()) message_.append(": ").append(argument);
}

Exception::Exception(const std::string& message, const Exception& nested)
    : message_(message),
      nested_(nested.clone()) {}

Exception::Exception(const Exception& other)
    : std::exception(other),
      message_(other.message_),
      nested_(CloneOf(other.nested())) {}

Exception& Exception::operator=(const Exception& other) {
    // The clone comes first, so that `other` may be nested in this object.
    std::unique_ptr<Exception> nested = CloneOf(other.nested());
    message_ = other.message_;
    nested_ = std::move(nested);
    return *this;
}

Exception& Exception::operator=(Exception&& other) noexcept {
    if (this == &other) return *this;
    // Both are taken before anything is released, so that `other` may be nested in this object.
    std::string message = std::move(other.message_);
    std::unique_ptr<Exception> nested = std::move(other.nested_);
    other.message_.clear();
    message_ = std::move(message);
    nested_ = std::move(nested);
    return *this;
}

Exception::~Exception() = default;

Exception* Exception::clone() const {
    return new Exception(*this);
}

void Exception::rethrow() const {
    throw Exception(*this);
}

std::string Exception::displayText() const {
    return message_.empty() ? std::string(name()) : std::string(name()) + ": " + message_;
}

void Exception::extendedMessage(const std::string& argument) {
    if (argument.empty()) return;
    // Aside first: the argument may be this very message, and a failure must leave it whole.
    std::string extended = message_.empty() ? argument : message_ + ": " + argument;
    message_.swap(extended);
}

}  // namespace tarn
