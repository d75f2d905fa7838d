#pragma once

#include "tarn/export.h"

#include <exception>
#include <memory>
#include <string>

namespace tarn {

/// Root of the exceptions that the library defines. Beside them, and only where their calls say so, come
/// `std::invalid_argument` (`ICollisionBody::SetLeafNumber`), `std::bad_cast` (checks) and
/// `std::length_error` (more triangles in a body or couples in a configuration than can be counted);
/// allocation failures are `std::bad_alloc`.
///
/// An exception carries a message, which may be empty, and may own a copy of another exception that caused
/// it. `what()` answers with the class name only, so whoever prints an error prints `displayText()`.
///
/// Thread-safety: as any value; concurrent reads are safe.
class TARN_API Exception : public std::exception {
public:
    /// The class name.
    static constexpr const char* kName = "Exception";

    /// Without a message.
    Exception() = default;
    /// With a message and nothing nested.
    explicit Exception(const std::string& message);
    /// The message, then ": " and the argument unless the argument is empty.
    Exception(const std::string& message, const std::string& argument);
    /// The message, and an owned copy of `nested`.
    Exception(const std::string& message, const Exception& nested);
    ///@{
    /// Copies message and nested exception.
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    ///@}
    /// Leaves `other` with an empty message and nothing nested.
    Exception& operator=(Exception&& other) noexcept;
    ~Exception() override;

    /// The class name, whatever the message says.
    const char* what() const noexcept final { return name(); }
    /// The class name.
    virtual const char* name() const noexcept { return kName; }
    /// A copy on the heap with the same dynamic class; the caller owns it.
    [[nodiscard]] virtual Exception* clone() const;
    /// Throws a copy of this object with its dynamic class.
    [[noreturn]] virtual void rethrow() const;

    /// The class name, then ": " and the message unless the message is empty.
    std::string displayText() const;
    /// Appends `argument` to the message, behind ": " where the message has text; an empty argument changes
    /// nothing.
    void extendedMessage(const std::string& argument);
    /// Empty where none was given.
    const std::string& message() const noexcept { return message_; }
    /// The exception that caused this one, or null. Owned by this object.
    const Exception* nested() const noexcept { return nested_.get(); }

private:
    std::string message_;
    std::unique_ptr<Exception> nested_;
};

/// What every class below `Exception` overrides, written once: name, copy and re-raise with the dynamic
/// class.
template <typename Derived, typename Base>
class TARN_API ExceptionOf : public Base {
public:
    using Base::Base;

    /// The class name.
    const char* name() const noexcept override { return Derived::kName; }
    /// A copy on the heap with the class `Derived`; the caller owns it.
    [[nodiscard]] Exception* clone() const override {
        return new Derived(static_cast<const Derived&>(*this));
    }
    /// Throws a copy with the class `Derived`.
    [[noreturn]] void rethrow() const override { throw Derived(static_cast<const Derived&>(*this)); }
};

/// A mistake of the caller.
class TARN_API LogicException : public ExceptionOf<LogicException, Exception> {
public:
    /// The class name.
    static constexpr const char* kName = "LogicException";
    using ExceptionOf::ExceptionOf;
};

/// A null pointer where an object is required.
class TARN_API NullPointerException : public ExceptionOf<NullPointerException, LogicException> {
public:
    /// The class name.
    static constexpr const char* kName = "NullPointerException";
    using ExceptionOf::ExceptionOf;
};

/// An argument outside its range.
class TARN_API InvalidArgumentException : public ExceptionOf<InvalidArgumentException, LogicException> {
public:
    /// The class name.
    static constexpr const char* kName = "InvalidArgumentException";
    using ExceptionOf::ExceptionOf;
};

/// Data that contradicts itself or what it must be.
class TARN_API InconsistentDataException : public ExceptionOf<InconsistentDataException, LogicException> {
public:
    /// The class name.
    static constexpr const char* kName = "InconsistentDataException";
    using ExceptionOf::ExceptionOf;
};

/// A division by zero. The lower-case b belongs to the name.
class TARN_API DivisionbyZeroException : public ExceptionOf<DivisionbyZeroException, LogicException> {
public:
    /// The class name.
    static constexpr const char* kName = "DivisionbyZeroException";
    using ExceptionOf::ExceptionOf;
};

/// A failure of the surroundings: files, memory, foreign objects.
class TARN_API RuntimeException : public ExceptionOf<RuntimeException, Exception> {
public:
    /// The class name.
    static constexpr const char* kName = "RuntimeException";
    using ExceptionOf::ExceptionOf;
};

/// Memory ran out.
class TARN_API OutOfMemoryException : public ExceptionOf<OutOfMemoryException, RuntimeException> {
public:
    /// The class name.
    static constexpr const char* kName = "OutOfMemoryException";
    using ExceptionOf::ExceptionOf;
};

/// An object that implements an interface in a class that is not the library's own.
class TARN_API BadCastException : public ExceptionOf<BadCastException, RuntimeException> {
public:
    /// The class name.
    static constexpr const char* kName = "BadCastException";
    using ExceptionOf::ExceptionOf;
};

}  // namespace tarn
