// The start-up routine: what is prepared and checked before the program does what it was asked for.
#pragma once

#include "config/command_line.h"
#include "platform/integrity_check.h"

namespace kelvara {

using Dispatcher = void (*)(CommandLine& command_line, IntegrityCheck& integrity_check);

// Leading flags, priority, crash handler, checks, the tables of cores and nodes; then the computation that
// waits to be resumed, or the dispatcher where none does. Returns 0.
int start_up(CommandLine& command_line, Dispatcher dispatcher);

}  // namespace kelvara
