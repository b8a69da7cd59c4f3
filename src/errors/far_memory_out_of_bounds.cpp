#include "errors/far_memory_out_of_bounds.h"

#include "console/console.h"
#include "errors/record.h"
#include "errors/registry.h"

namespace qmp {

void FarMemoryOutOfBoundsException::print_body() const {
    console::println("Out-of-Bounds Access on FarMemory object:");
    console::println("    Function: " + function_);
    console::println("    Object Size: " + std::to_string(object_size_));
    console::println("    Access Offset: " + std::to_string(access_offset_));
    console::println("    Access Length: " + std::to_string(access_length_));
}

std::string FarMemoryOutOfBoundsException::serialize() const {
    return RecordWriter("FarMemoryOutOfBoundsException")
        .text(function_)
        .u64(object_size_)
        .u64(access_offset_)
        .u64(access_length_)
        .take();
}

namespace {

std::unique_ptr<Exception> rebuild(RecordReader& fields) {
    std::string function = fields.text();
    const std::uint64_t object_size = fields.u64();
    const std::uint64_t access_offset = fields.u64();
    const std::uint64_t access_length = fields.u64();
    return std::make_unique<FarMemoryOutOfBoundsException>(std::move(function), object_size, access_offset,
                                                           access_length);
}

const ExceptionRegistration registration("FarMemoryOutOfBoundsException", rebuild);

}  // namespace
}  // namespace qmp
