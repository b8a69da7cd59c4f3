#include "errors/file_exception.h"

#include "console/console.h"
#include "errors/os_errors.h"
#include "errors/record.h"
#include "errors/registry.h"

namespace qmp {

void FileFailure::print_body() const {
    if (!function_.empty()) console::println("In Function: " + function_);
    if (error_code_ != 0) console::println("Error Code: " + std::to_string(error_code_));
    console::println("Path: " + path_);
    console::newline();
    console::println(message_);
}

void print_file_warning(std::string_view text, const FileFailure& failure) {
    console::print_warning(text, true);
    console::println("Error Code " + std::to_string(failure.error_code()) + ": " +
                     os_error_text(failure.error_code()));
    console::reset_color();
}

std::string FileFailure::serialize_as(const char* name) const {
    return RecordWriter(name).text(function_).text(message_).text(path_).u32(error_code_).take();
}

void R03::Raid03Exception::print_heading() const {
    console::print_label_line("Raid03 Exception Encountered", get_name());
}

void DiskRaid0::Raid0Exception::print_heading() const {
    console::print_label_line("Raid03 Exception Encountered", get_name());
}

namespace {

template <typename Class>
std::unique_ptr<Exception> rebuild(RecordReader& fields) {
    std::string function = fields.text();
    std::string message = fields.text();
    std::string path = fields.text();
    const std::uint32_t error_code = fields.u32();
    return std::make_unique<Class>(std::move(function), std::move(message), std::move(path), error_code);
}

const ExceptionRegistration registrations[] = {
    {"FileException", rebuild<FileIO::FileException>},
    {"InconsistentMetaData", rebuild<Ordalis::InconsistentMetaData>},
    {"Raid03Exception", rebuild<R03::Raid03Exception>},
    {"Raid0Exception", rebuild<DiskRaid0::Raid0Exception>},
};

}  // namespace
}  // namespace qmp
