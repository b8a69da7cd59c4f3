// The process: its arguments, path, priority, end and crash.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qmp::os {

// "Windows" or "Linux".
std::string_view system_name();
// What the implementations of this seam are built on: "WinAPI" or "Linux API".
std::string_view system_interface_name();

// The arguments as UTF-8, the program itself included. Usable before main.
std::vector<std::string> arguments();

// The full path of the executable as UTF-8, or nothing when the system does not tell it.
std::optional<std::string> program_path();

// Lets every other program go first. A refusal is ignored.
void lower_process_priority();

bool debugger_present();

// Ends the process at once: streams are flushed, nothing is destroyed, other threads are not waited for.
[[noreturn]] void exit_process(int exit_code);

// The system's own text for one of its error codes, without a line end, in `buffer`. Allocates nothing.
std::string_view system_error_text(std::uint32_t code, std::span<char> buffer);
std::string system_error_text(std::uint32_t code);

// What the system hands to a crash handler; null when the process ended itself in despair (an exception
// that nobody caught).
struct CrashContext;
using CrashHandler = void (*)(const CrashContext* context);

// From now on a fault that nothing handles calls the handler, once, on the thread at fault; when it
// returns the process ends as the fault would have ended it. On Linux the handler runs in a signal: it
// should not allocate.
void install_crash_handler(CrashHandler handler);

enum class DumpResult { written, cannot_create, cannot_write };

struct DumpOutcome {
    DumpResult result = DumpResult::written;
    std::uint32_t error_code = 0;
};

// Writes what a developer needs to understand the crash into a file: a minidump on Windows; on Linux the
// signal, the registers, the call stack and the memory map as text. The path ends with a NUL.
DumpOutcome write_crash_dump(const char* path, const CrashContext* context);

}  // namespace qmp::os
