#pragma once

#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/text.h"

#include <exception>
#include <string>

/// \file
/// The errors of the object model. Failures of the engine come out as `tarn::Exception` and its kin, except
/// where an operation says that it translates them.

namespace Ostrel::Quarrix::Collisions {

/// Root of the errors here, and the plain error.
class QUARRIX_API Exception : public std::exception {
public:
    /// With a message, or without.
    explicit Exception(Text message = nullptr);
    ~Exception() override;

    /// Empty where none was given.
    const std::string& get_Message() const noexcept { return message_; }
    /// For a log: the class name, the message, and what it is about.
    const char* what() const noexcept override { return description_.c_str(); }

protected:
    /// `about` names what the error is about, as in "parameter 'element'"; empty if nothing.
    Exception(Text class_name, Text message, const std::string& about);

private:
    std::string message_;
    std::string description_;
};

/// An argument that an operation does not take.
class QUARRIX_API ArgumentException : public Exception {
public:
    /// With a message about a parameter.
    ArgumentException(Text message, Text param_name);
    ~ArgumentException() override;

    /// Empty where none is named.
    const std::string& get_ParamName() const noexcept { return param_name_; }

protected:
    /// For a class below this one.
    ArgumentException(Text class_name, Text message, Text param_name);

private:
    std::string param_name_;
};

/// Null where an object is required.
class QUARRIX_API ArgumentNullException : public ArgumentException {
public:
    /// About a parameter, which may be left unnamed.
    explicit ArgumentNullException(Text param_name = nullptr);
    ~ArgumentNullException() override;
};

/// A value outside its range.
class QUARRIX_API ArgumentOutOfRangeException : public ArgumentException {
public:
    /// With a message about a parameter.
    ArgumentOutOfRangeException(Text param_name, Text message);
    ~ArgumentOutOfRangeException() override;
};

/// Use of null where nobody tests for it.
class QUARRIX_API NullReferenceException : public Exception {
public:
    /// With a message, or without.
    explicit NullReferenceException(Text message = nullptr);
    ~NullReferenceException() override;
};

/// Use of an item beyond the end of an array.
class QUARRIX_API IndexOutOfRangeException : public Exception {
public:
    /// With a message, or without.
    explicit IndexOutOfRangeException(Text message = nullptr);
    ~IndexOutOfRangeException() override;
};

/// A lookup of what is not there.
class QUARRIX_API KeyNotFoundException : public Exception {
public:
    /// With a message, or without.
    explicit KeyNotFoundException(Text message = nullptr);
    ~KeyNotFoundException() override;
};

/// An object of a class that an operation does not take.
class QUARRIX_API InvalidCastException : public Exception {
public:
    /// With a message, or without.
    explicit InvalidCastException(Text message = nullptr);
    ~InvalidCastException() override;
};

/// An operation that the library does not have.
class QUARRIX_API NotImplementedException : public Exception {
public:
    /// With a message, or without.
    explicit NotImplementedException(Text message = nullptr);
    ~NotImplementedException() override;
};

/// An operation that the state of an object does not allow.
class QUARRIX_API InvalidOperationException : public Exception {
public:
    /// With a message, or without.
    explicit InvalidOperationException(Text message = nullptr);
    ~InvalidOperationException() override;

protected:
    /// For a class below this one.
    InvalidOperationException(Text class_name, Text message, const std::string& about);
};

/// Use of an object after its disposal.
class QUARRIX_API ObjectDisposedException : public InvalidOperationException {
public:
    /// About an object by name, which may be empty.
    explicit ObjectDisposedException(Text object_name);
    ~ObjectDisposedException() override;

    /// Empty where none is named.
    const std::string& get_ObjectName() const noexcept { return object_name_; }

private:
    std::string object_name_;
};

}  // namespace Ostrel::Quarrix::Collisions
