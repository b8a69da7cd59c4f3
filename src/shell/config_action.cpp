#include "shell/config_action.h"

#include "errors/exception.h"
#include "sessions/saved_computation.h"

namespace kelvara {

void run_config_action(CommandLine& command_line) {
    command_line.take_argument();
    if (!command_line.has_more()) {
        throw qmp::InvalidParametersException("", "Please specify a config file.");
    }
    run_configuration(command_line.take_argument());
}

}  // namespace kelvara
