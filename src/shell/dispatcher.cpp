#include "shell/dispatcher.h"

#include <map>
#include <string>

#include "config/command_line.h"
#include "console/console.h"
#include "errors/exception.h"
#include "shell/custom_action.h"

namespace kelvara {
namespace {

using ActionHandler = void (*)(CommandLine& command_line);

void answer_not_available(CommandLine& command_line) {
    throw qmp::InvalidParametersException(
        "", "The action \"" + command_line.current_key() + "\" is not available in this build yet.");
}

// A table of the actions and what runs each.
const std::map<std::string, ActionHandler>& action_table() {
    static const std::map<std::string, ActionHandler> table = {
        {"bench", answer_not_available},   {"stress", answer_not_available},
        {"benchio", answer_not_available}, {"custom", run_custom_action},
        {"bbp", answer_not_available},     {"ordalis", answer_not_available},
        {"about", answer_not_available},   {"validate", answer_not_available},
        {"config", answer_not_available},
    };
    return table;
}

}  // namespace

void dispatch(CommandLine& command_line, IntegrityCheck& integrity_check) {
    integrity_check();
    if (!command_line.has_more()) {
        throw qmp::InvalidParametersException(
            "",
            "The main menu is not available in this build yet.\nName an action, for example:\n"
            "    kelvara custom pi -dec:50000 -o FOLDER");
    }
    const std::string& key = command_line.current_key();
    const auto action = action_table().find(key);
    if (action == action_table().end()) qmp::console::fatal_error("Invalid Parameter: " + key);
    action->second(command_line);
}

}  // namespace kelvara
