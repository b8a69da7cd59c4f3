// What the user sees, and the developer gets, when the program crashes.
#pragma once

#include <span>
#include <string_view>

#include "platform/os/clock.h"
#include "platform/os/crash.h"

namespace kelvara {

// Writes a dump file into the current directory, tells so and waits for a key. It allocates nothing: the
// heap may be what is broken.
void handle_crash(const qmp::os::CrashContext* context);

// The same with another way of writing the dump.
using DumpWriter = qmp::os::DumpOutcome (*)(const char* path, std::string_view description,
                                            const qmp::os::CrashContext* context);
void report_crash(const qmp::os::CrashContext* context, DumpWriter write_dump);

// What dumps say of the program from now on: its version, and the digest and the outcome of the integrity
// check once they are known. Called while the program starts, on the main thread.
void describe_program(std::string_view digest = {}, std::string_view integrity = {});

constexpr std::size_t dump_name_size = 32;
// Kelvara-YYYYMMDD-HHMMSS.dmp, with its NUL.
void make_dump_name(const qmp::os::LocalTime& time, std::span<char, dump_name_size> name);

}  // namespace kelvara
