// The "custom" action: one computation described by command-line options.
#pragma once

namespace kelvara {

class CommandLine;

// Consumes the action keyword, the constant and the options, and runs the computation; without a constant,
// the custom-compute menu.
// Options are written key:value in one argument; only "-o" takes the argument that follows it.
void run_custom_action(CommandLine& command_line);

}  // namespace kelvara
