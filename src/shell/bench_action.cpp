#include "shell/bench_action.h"

#include "console/parse.h"
#include "errors/exception.h"
#include "sessions/benchmark_sizes.h"
#include "sessions/ram_settings.h"
#include "shell/entry_points.h"
#include "shell/option_table.h"

namespace kelvara {
namespace {

struct BenchOptions {
    RamSettings settings;
    const BenchmarkSize* size = nullptr;
};

// "-TD 2.5b:16": the number of tasks stands behind the size that follows, which is read once more as a size.
void choose_task_decomposition(BenchOptions& options, CommandLine& command_line) {
    command_line.take_argument();
    options.settings.set_task_decomposition(qmp::console::parse_decimal(command_line.current_pair().second));
}

// A table of the options and what each does to the settings.
const OptionTable<BenchOptions>& option_table() {
    static const OptionTable<BenchOptions> table = {
        {"-TD", choose_task_decomposition},
        {"-PF", [](BenchOptions& o, CommandLine& c) { o.settings.set_framework(take_value(c)); }},
        {"-MA", [](BenchOptions& o, CommandLine& c) { o.settings.set_allocator(take_value(c)); }},
    };
    return table;
}

// What is no option names a size.
void choose_size(BenchOptions& options, CommandLine& command_line) {
    if (command_line.current_key().starts_with('-')) refuse_option(options, command_line);
    options.size = find_benchmark_size(command_line.current_key());
    if (!options.size) {
        throw qmp::InvalidParametersException("", "Invalid Command: " + command_line.current());
    }
    options.settings.set_decimal_digits(options.size->digits);
    command_line.take_argument();
}

}  // namespace

void run_bench_action(CommandLine& command_line) {
    command_line.take_argument();
    if (!command_line.has_more()) return run_benchmark_menu();
    BenchOptions options;
    parse_options(option_table(), options, command_line, choose_size);
    if (!options.size) throw qmp::InvalidParametersException("", "No benchmark size selected.");
    run_benchmark(options.settings, *options.size);
}

}  // namespace kelvara
