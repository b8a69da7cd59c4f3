#include "shell/stress_action.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "console/console.h"
#include "console/input.h"
#include "console/parse.h"
#include "errors/exception.h"
#include "shell/entry_points.h"
#include "shell/option_table.h"
#include "stress/continuous_run.h"
#include "stress/stress_menu.h"

namespace kelvara {
namespace {

// What the options fill.
struct StressOptions {
    StressSettings settings;
    std::span<const StressTestEntry> tests;
};

// A table of the options and what each does to the settings.
const OptionTable<StressOptions>& option_table() {
    static const OptionTable<StressOptions> table = {
        {"-M",
         [](StressOptions& s, CommandLine& c) {
             s.settings.memory =
                 std::min(qmp::console::parse_bytes(take_value(c)), qmp::console::largest_memory_cap);
         }},
        {"-T",
         [](StressOptions& s, CommandLine& c) {
             s.settings.threads = std::max<std::uint64_t>(qmp::console::parse_decimal(take_value(c)), 1);
         }},
        {"-D",
         [](StressOptions& s, CommandLine& c) {
             s.settings.seconds_per_test = qmp::console::parse_decimal(take_value(c));
         }},
    };
    return table;
}

// What is no option names a test.
void choose_test(StressOptions& options, CommandLine& command_line) {
    const std::string& code = command_line.current_key();
    if (code.starts_with('-')) refuse_option(options, command_line);
    const std::span<const StressTestEntry> tests = options.tests;
    const auto found = std::find_if(tests.begin(), tests.end(),
                                    [&](const StressTestEntry& entry) { return entry.code == code; });
    if (found == tests.end()) {
        throw qmp::InvalidParametersException("", "Invalid Command: " + command_line.current());
    }
    if (found->test) {
        options.settings.enabled[static_cast<std::size_t>(found - tests.begin())] = true;
    } else {
        qmp::console::println("Algorithm " + code + " is not available.");
    }
    command_line.take_argument();
}

}  // namespace

StressSettings parse_stress_options(CommandLine& command_line, std::span<const StressTestEntry> tests) {
    command_line.take_argument();
    StressOptions options{{}, tests};
    options.settings.enable_all(false);
    parse_options(option_table(), options, command_line, choose_test);
    if (!options.settings.any_enabled()) options.settings.enable_all(true);
    return std::move(options.settings);
}

void run_stress_test_action(CommandLine& command_line) {
    run_stress_tests(parse_stress_options(command_line));
}

void run_stress_test_menu() {
    StressSettings settings;
    edit_stress_settings(settings);
    run_stress_tests(settings);
}

}  // namespace kelvara
