// The end that nobody wanted: what calls a handler when the program crashes, and what a dump holds.
#pragma once

#include <cstdint>
#include <string_view>

namespace qmp::os {

// What the system hands to a crash handler; null when the process ended itself in despair (an exception
// that nobody caught).
struct CrashContext;
using CrashHandler = void (*)(const CrashContext* context);

// From now on a fault that nothing handles calls the handler, once, on the thread at fault; when it
// returns the process ends as the fault would have ended it. Other threads that fault meanwhile wait for
// that end; a fault of the handler itself ends the process at once. On Linux the handler runs in a
// signal: it must neither allocate nor wait for a lock. Called once, on the main thread.
void install_crash_handler(CrashHandler handler);

enum class DumpResult { written, cannot_create, cannot_write };

struct DumpOutcome {
    DumpResult result = DumpResult::written;
    // The system's own code; 0 when the dump is written.
    std::uint32_t error_code = 0;
};

// Writes what a developer needs to understand the crash into a file: a minidump on Windows; on Linux the
// signal, registers, call stack, modules, stack memory, threads and memory map as text. `description` says
// which program it was and stands in the dump as it is. The path ends with a NUL. Allocates nothing on
// Linux.
DumpOutcome write_crash_dump(const char* path, std::string_view description, const CrashContext* context);

}  // namespace qmp::os
