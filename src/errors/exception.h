// The exceptions that the program can survive, or at least report cleanly.
//
// Each class knows its name, prints itself in a fixed red layout, copies and re-throws itself as its own
// dynamic type, and serialises itself into a byte record. Objects are values: thrown by value, caught by
// reference, cloned when they must outlive a catch clause. Printing never throws.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qmp {

class Exception {
  public:
    virtual ~Exception() = default;
    // Throws a copy of the object as its dynamic type.
    [[noreturn]] virtual void throw_this() const = 0;
    // The class name without namespace.
    virtual const char* get_name() const = 0;
    virtual std::unique_ptr<Exception> clone() const = 0;
    // The red block headed "Exception Encountered".
    void print() const;
    // Little-endian integers, NUL-terminated texts, no padding; begins with the name of the class that a
    // record of this shape is rebuilt as (registry.h). A class that adds no field writes its base's record,
    // so its exact class is lost there: a reader needs only the shapes.
    virtual std::string serialize() const = 0;

  protected:
    // The labelled heading; "Exception Encountered: name" unless a class says otherwise.
    virtual void print_heading() const;
    // The class's own lines, in bright red.
    virtual void print_body() const = 0;
};

// The virtual operations that every concrete class writes alike.
#define QMP_EXCEPTION_OPERATIONS(Class, name)                \
    [[noreturn]] void throw_this() const override {          \
        throw *this;                                         \
    }                                                        \
    const char* get_name() const override {                  \
        return name;                                         \
    }                                                        \
    std::unique_ptr<qmp::Exception> clone() const override { \
        return std::make_unique<Class>(*this);               \
    }

// A function's name and a message.
class StringException : public Exception {
  public:
    StringException(std::string function, std::string message)
        : function_(std::move(function)), message_(std::move(message)) {}
    QMP_EXCEPTION_OPERATIONS(StringException, "StringException")
    std::string serialize() const override;
    const std::string& function() const { return function_; }
    const std::string& message() const { return message_; }

  protected:
    void print_body() const override;
    std::string function_;
    std::string message_;
};

// A class that adds nothing to its base but a name.
#define QMP_NAMED_EXCEPTION(Class, Base)        \
    class Class : public Base {                 \
      public:                                   \
        using Base::Base;                       \
        QMP_EXCEPTION_OPERATIONS(Class, #Class) \
    };

QMP_NAMED_EXCEPTION(InvalidParametersException, StringException)
QMP_NAMED_EXCEPTION(InvalidTransformException, InvalidParametersException)
QMP_NAMED_EXCEPTION(TransformTooSmallException, InvalidTransformException)
QMP_NAMED_EXCEPTION(AlgorithmFailedException, StringException)
QMP_NAMED_EXCEPTION(ArithmeticException, StringException)
QMP_NAMED_EXCEPTION(ParseException, StringException)
QMP_NAMED_EXCEPTION(FarMemoryException, StringException)
QMP_NAMED_EXCEPTION(UnsupportedValueException, StringException)
QMP_NAMED_EXCEPTION(UnsupportedZeroException, UnsupportedValueException)
QMP_NAMED_EXCEPTION(UnsupportedNegativeException, UnsupportedValueException)

class BufferTooSmallException : public Exception {
  public:
    BufferTooSmallException(std::string function, std::uint64_t buffer_size, std::uint64_t required_size)
        : function_(std::move(function)), buffer_size_(buffer_size), required_size_(required_size) {}
    QMP_EXCEPTION_OPERATIONS(BufferTooSmallException, "BufferTooSmallException")
    std::string serialize() const override;
    const std::string& function() const { return function_; }
    std::uint64_t buffer_size() const { return buffer_size_; }
    std::uint64_t required_size() const { return required_size_; }

  protected:
    void print_body() const override;
    std::string function_;
    std::uint64_t buffer_size_;
    std::uint64_t required_size_;
};

class LimitExceededException : public Exception {
  public:
    // A limit of 0 means unknown.
    LimitExceededException(std::string function, std::uint64_t limit, std::uint64_t attempted)
        : function_(std::move(function)), limit_(limit), attempted_(attempted) {}
    QMP_EXCEPTION_OPERATIONS(LimitExceededException, "LimitExceededException")
    std::string serialize() const override;
    const std::string& function() const { return function_; }
    std::uint64_t limit() const { return limit_; }
    std::uint64_t attempted() const { return attempted_; }

  protected:
    void print_body() const override;
    std::string function_;
    std::uint64_t limit_;
    std::uint64_t attempted_;
};

}  // namespace qmp
