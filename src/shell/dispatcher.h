// From the command line to an action, or to the main menu.
#pragma once

#include "config/command_line.h"
#include "platform/integrity_check.h"

namespace kelvara {

// Runs the integrity check's operation, then the action that the next argument names, or the main menu
// when no argument remains. An unknown action is a fatal error.
void dispatch(CommandLine& command_line, IntegrityCheck& integrity_check);

}  // namespace kelvara
