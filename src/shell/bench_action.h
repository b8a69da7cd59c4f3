// The "bench" action: the benchmark of one size.
#pragma once

namespace kelvara {

class CommandLine;

// Consumes the action keyword, the options and the size, and runs the benchmark; without any argument, its
// menu.
void run_bench_action(CommandLine& command_line);

}  // namespace kelvara
