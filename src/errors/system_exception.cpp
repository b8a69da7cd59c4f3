#include "errors/system_exception.h"

#include "console/console.h"
#include "errors/record.h"
#include "errors/registry.h"

namespace qmp {

void SystemException::print_heading() const {
    console::print_label_line("System Exception Encountered", get_name());
}

void SystemException::print_body() const {
    console::println("In Function: " + function_);
    console::println("Error Code: " + std::to_string(error_code_));
    console::println(message_);
}

std::string SystemException::serialize() const {
    return RecordWriter("SystemException").text(function_).text(message_).u32(error_code_).take();
}

namespace {

std::unique_ptr<Exception> rebuild(RecordReader& fields) {
    std::string function = fields.text();
    std::string message = fields.text();
    const std::uint32_t error_code = fields.u32();
    return std::make_unique<SystemException>(std::move(function), std::move(message), error_code);
}

const ExceptionRegistration registration("SystemException", rebuild);

}  // namespace
}  // namespace qmp
