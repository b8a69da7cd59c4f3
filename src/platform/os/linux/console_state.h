// What this process has changed on its terminal, for the code that puts it back when a signal ends the
// process.
#pragma once

#include <termios.h>

#include <atomic>

namespace qmp::os {

bool is_dumb_terminal();

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler reads these");

// Whether the terminal shows another colour than its default.
extern std::atomic<bool> console_is_coloured;

// While lines and echo are switched off: the settings of the terminal as they were.
extern std::atomic<bool> terminal_is_uncooked;
extern termios cooked_terminal;

}  // namespace qmp::os
