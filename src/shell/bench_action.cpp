#include "shell/bench_action.h"

#include "console/parse.h"
#include "errors/exception.h"
#include "sessions/benchmark_settings.h"
#include "shell/entry_points.h"
#include "shell/option_table.h"

namespace kelvara {
namespace {

// "-TD 2.5b:16": the number of tasks stands behind the size that follows, which is read once more as a size.
void choose_task_decomposition(BenchmarkSettings& settings, CommandLine& command_line) {
    command_line.take_argument();
    settings.computation().set_task_decomposition(
        qmp::console::parse_decimal(command_line.current_pair().second));
}

// A table of the options and what each does to the settings.
const OptionTable<BenchmarkSettings>& option_table() {
    static const OptionTable<BenchmarkSettings> table = {
        {"-TD", choose_task_decomposition},
        {"-PF", [](BenchmarkSettings& s, CommandLine& c) { s.computation().set_framework(take_value(c)); }},
        {"-MA", [](BenchmarkSettings& s, CommandLine& c) { s.computation().set_allocator(take_value(c)); }},
    };
    return table;
}

// What is no option names a size.
void choose_size(BenchmarkSettings& settings, CommandLine& command_line) {
    if (command_line.current_key().starts_with('-')) refuse_option(settings, command_line);
    const BenchmarkSize* size = find_benchmark_size(command_line.current_key());
    if (!size) throw qmp::InvalidParametersException("", "Invalid Command: " + command_line.current());
    settings.set_size(*size);
    command_line.take_argument();
}

}  // namespace

void run_bench_action(CommandLine& command_line) {
    command_line.take_argument();
    if (!command_line.has_more()) return run_benchmark_menu();
    BenchmarkSettings settings;
    parse_options(option_table(), settings, command_line, choose_size);
    settings.run();
}

}  // namespace kelvara
