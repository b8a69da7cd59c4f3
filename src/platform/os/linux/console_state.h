// What this process has changed on its terminal, for the code that puts it back when a signal ends the
// process.
#pragma once

#include <termios.h>

#include <atomic>

namespace qmp::os {

bool is_dumb_terminal();

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "a signal handler reads these");

// Whether the terminal has ever been shown another colour than its default. What it shows at the moment is
// not known: threads print side by side.
extern std::atomic<bool> console_was_coloured;

// Threads in the middle of a write, and whether nothing may be written any more.
extern std::atomic<int> console_writers;
extern std::atomic<bool> console_is_closed;

// While lines and echo are switched off: the settings of the terminal as they were.
extern std::atomic<bool> terminal_is_uncooked;
extern termios cooked_terminal;

}  // namespace qmp::os
