#include "errors/exception.h"

#include "console/console.h"
#include "errors/record.h"
#include "errors/registry.h"

namespace qmp {

void Exception::print() const {
    console::println("", 'R');
    print_heading();
    console::newline();
    print_body();
    console::newline();
    console::reset_color();
}

void Exception::print_heading() const {
    console::print_label_line("Exception Encountered", get_name());
}

void StringException::print_body() const {
    if (!function_.empty()) {
        console::print_label_line("In Function", function_);
        console::newline();
    }
    console::println(message_);
}

std::string StringException::serialize() const {
    return RecordWriter("StringException").text(function_).text(message_).take();
}

void BufferTooSmallException::print_body() const {
    console::println("Buffer is too small:");
    console::println("    Function: " + function_);
    console::println("    Buffer Size: " + std::to_string(buffer_size_));
    console::println("    Required Size: " + std::to_string(required_size_));
}

std::string BufferTooSmallException::serialize() const {
    return RecordWriter("BufferTooSmallException")
        .text(function_)
        .u64(buffer_size_)
        .u64(required_size_)
        .take();
}

void LimitExceededException::print_body() const {
    console::println("Limit Exceeded:");
    if (!function_.empty()) console::println("    Function: " + function_);
    console::println("    Limit: " + (limit_ == 0 ? std::string("Unknown") : std::to_string(limit_)));
    console::println("    Attempted: " + std::to_string(attempted_));
}

std::string LimitExceededException::serialize() const {
    return RecordWriter("LimitExceededException").text(function_).u64(limit_).u64(attempted_).take();
}

namespace {

template <typename Class>
std::unique_ptr<Exception> rebuild_text(RecordReader& fields) {
    std::string function = fields.text();
    std::string message = fields.text();
    return std::make_unique<Class>(std::move(function), std::move(message));
}

template <typename Class>
std::unique_ptr<Exception> rebuild_two_sizes(RecordReader& fields) {
    std::string function = fields.text();
    const std::uint64_t first = fields.u64();
    const std::uint64_t second = fields.u64();
    return std::make_unique<Class>(std::move(function), first, second);
}

const ExceptionRegistration registrations[] = {
    {"StringException", rebuild_text<StringException>},
    {"InvalidParametersException", rebuild_text<InvalidParametersException>},
    {"InvalidTransformException", rebuild_text<InvalidTransformException>},
    {"TransformTooSmallException", rebuild_text<TransformTooSmallException>},
    {"AlgorithmFailedException", rebuild_text<AlgorithmFailedException>},
    {"ArithmeticException", rebuild_text<ArithmeticException>},
    {"ParseException", rebuild_text<ParseException>},
    {"FarMemoryException", rebuild_text<FarMemoryException>},
    {"UnsupportedValueException", rebuild_text<UnsupportedValueException>},
    {"UnsupportedZeroException", rebuild_text<UnsupportedZeroException>},
    {"UnsupportedNegativeException", rebuild_text<UnsupportedNegativeException>},
    {"BufferTooSmallException", rebuild_two_sizes<BufferTooSmallException>},
    {"LimitExceededException", rebuild_two_sizes<LimitExceededException>},
};

}  // namespace
}  // namespace qmp
