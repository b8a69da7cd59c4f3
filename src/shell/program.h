// The program from its entry to its end.
#pragma once

#include <functional>

#include "shell/startup.h"

namespace kelvara {

// Everything that happens in the process; returns its exit code, which is 0 unless something fatal ended
// it before. `dispatcher` does what the command line asks for once the program has started.
int run_program(Dispatcher dispatcher);

// Runs the start-up routine and prints what escapes from it: the program's own exceptions by themselves, the
// standard library's as "Uncaught std exception". Returns the routine's exit code, or 0 when something was
// printed. With a debugger everything escapes.
int run_guarded(const std::function<int()>& routine, bool debugger_present);

// Whether the program waits for a key before it ends.
bool pauses_at_exit(int pause_mode, bool console_is_fresh);

}  // namespace kelvara
