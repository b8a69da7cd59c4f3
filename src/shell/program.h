// The program from its entry to its end.
#pragma once

#include "shell/startup.h"

namespace kelvara {

// Everything that happens in the process; returns its exit code, which is 0 unless something fatal ended
// it before. `dispatcher` does what the command line asks for once the program has started.
int run_program(Dispatcher dispatcher);

// The start-up routine with what escapes from it printed: the program's own exceptions by themselves, the
// standard library's as "Uncaught std exception". Returns the exit code.
int run_guarded(CommandLine& command_line, Dispatcher dispatcher);

// Whether the program waits for a key before it ends.
bool pauses_at_exit(int pause_mode, bool console_is_fresh);

}  // namespace kelvara
