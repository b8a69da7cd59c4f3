#include "errors/os_errors.h"

#include "console/console.h"
#include "errors/file_exception.h"

namespace qmp {
namespace {

// The text that both ways share, or null.
const char* common_text(std::uint32_t code) {
    switch (code) {
        case 5:
            return "Access Denied";
        case 8:
        case 14:
            return "Not Enough Memory";
        case 23:
            return "Cyclic Redundancy Check - Possible Hardware Failure";
        case 29:
            return "Write Fault";
        case 30:
            return "Read Fault";
        case 39:
        case 112:
            return "Disk is Full";
        default:
            return nullptr;
    }
}

// A missing path and a lost device are worth a text only where the failure is raised.
const char* thrown_text(std::uint32_t code) {
    switch (code) {
        case 2:
            return "Path does not exist.";
        case 1167:
            return "The device has been disconnected.";
        default:
            return common_text(code);
    }
}

std::string or_unknown(const char* text) {
    if (text) return text;
    return "Unknown Error, See:\nhttps://learn.microsoft.com/windows/win32/debug/system-error-codes";
}

}  // namespace

void print_os_error(std::uint32_t code) {
    console::println("", 'R');
    console::print_label_line("Windows Error Code",
                              std::to_string(code) + "    " + or_unknown(common_text(code)));
    console::println("", 'w');
}

std::string os_error_text(std::uint32_t code) {
    return or_unknown(thrown_text(code));
}

void throw_os_error(std::uint32_t code, const std::string& path) {
    throw R03::Raid03Exception("", os_error_text(code), path, code);
}

}  // namespace qmp
