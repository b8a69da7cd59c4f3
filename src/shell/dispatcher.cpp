#include "shell/dispatcher.h"

#include <map>
#include <string>

#include "config/command_line.h"
#include "console/console.h"
#include "shell/about_screen.h"
#include "shell/bench_action.h"
#include "shell/custom_action.h"
#include "shell/entry_points.h"
#include "shell/main_menu.h"

namespace kelvara {
namespace {

using ActionHandler = void (*)(CommandLine& command_line);

// An action that takes no options; further arguments are left alone.
template <void (*run)()>
void run_simple_action(CommandLine& command_line) {
    command_line.take_argument();
    run();
}

// A table of the actions and what runs each. Every handler consumes its own keyword.
const std::map<std::string, ActionHandler>& action_table() {
    static const std::map<std::string, ActionHandler> table = {
        {"bench", run_bench_action},
        {"stress", run_stress_test_action},
        {"benchio", run_io_benchmark_action},
        {"custom", run_custom_action},
        {"bbp", run_simple_action<run_bbp_extractor>},
        {"ordalis", run_simple_action<run_ordalis>},
        {"about", run_simple_action<show_about_screen>},
        {"validate", run_simple_action<run_benchmark_validator>},
        {"config", run_configuration_file},
    };
    return table;
}

}  // namespace

void dispatch(CommandLine& command_line, IntegrityCheck& integrity_check) {
    integrity_check();
    if (!command_line.has_more()) return run_main_menu();
    const std::string& key = command_line.current_key();
    const auto action = action_table().find(key);
    if (action == action_table().end()) qmp::console::fatal_error("Invalid Parameter: " + key);
    action->second(command_line);
}

}  // namespace kelvara
