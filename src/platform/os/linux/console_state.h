// What this process has changed on its terminal, for the code that puts it back when a signal ends the
// process. Written by the main thread, read in a signal handler.
#pragma once

#include <termios.h>

#include <csignal>

namespace qmp::os {

bool is_dumb_terminal();

// Whether the terminal shows another colour than its default.
extern volatile std::sig_atomic_t console_is_coloured;

// While lines and echo are switched off: the settings of the terminal as they were.
extern volatile std::sig_atomic_t terminal_is_uncooked;
extern termios cooked_terminal;

}  // namespace qmp::os
