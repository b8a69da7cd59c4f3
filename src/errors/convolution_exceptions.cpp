#include "errors/convolution_exceptions.h"

#include "console/console.h"
#include "errors/record.h"
#include "errors/registry.h"

namespace qmp {

void ConvolutionTooSmallException::print_body() const {
    console::println("Limit Exceeded:");
    console::println("    Function: " + function_);
    console::println("    Convolution Size: " + std::to_string(convolution_size_));
    console::println("    Requested Size: " + std::to_string(requested_size_));
}

std::string ConvolutionTooSmallException::serialize() const {
    return RecordWriter("ConvolutionTooSmallException")
        .text(function_)
        .u64(convolution_size_)
        .u64(requested_size_)
        .take();
}

std::string ConvolutionFailedException::serialize() const {
    return RecordWriter("ConvolutionFailedException")
        .text(function_)
        .text(message_)
        .u64(limit_)
        .u64(found_)
        .take();
}

namespace {

std::unique_ptr<Exception> rebuild_too_small(RecordReader& fields) {
    std::string function = fields.text();
    const std::uint64_t convolution_size = fields.u64();
    const std::uint64_t requested_size = fields.u64();
    return std::make_unique<ConvolutionTooSmallException>(std::move(function), convolution_size,
                                                          requested_size);
}

std::unique_ptr<Exception> rebuild_failed(RecordReader& fields) {
    std::string function = fields.text();
    std::string message = fields.text();
    const std::uint64_t limit = fields.u64();
    const std::uint64_t found = fields.u64();
    return std::make_unique<ConvolutionFailedException>(std::move(function), std::move(message), limit,
                                                        found);
}

const ExceptionRegistration registrations[] = {
    {"ConvolutionTooSmallException", rebuild_too_small},
    {"ConvolutionFailedException", rebuild_failed},
};

}  // namespace
}  // namespace qmp
