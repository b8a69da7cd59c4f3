// The flags that stand before the action and rule how the program shows itself.
#pragma once

#include "config/command_line.h"

namespace kelvara {

// Consumes arguments for as long as their key is a leading flag: "pause", "colors", "PII", "height",
// "skip-warnings". The first other argument is the action.
void parse_leading_flags(CommandLine& command_line);

}  // namespace kelvara
