// What the user sees, and the developer gets, when the program crashes.
#pragma once

#include <span>

#include "platform/os/clock.h"
#include "platform/os/process.h"

namespace kelvara {

// Writes a dump file into the current directory, tells so and waits for a key. It allocates nothing: the
// heap may be what is broken.
void handle_crash(const qmp::os::CrashContext* context);

constexpr std::size_t dump_name_size = 32;
// Kelvara-YYYYMMDD-HHMMSS.dmp, with its NUL.
void make_dump_name(const qmp::os::LocalTime& time, std::span<char, dump_name_size> name);

}  // namespace kelvara
