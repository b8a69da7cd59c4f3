// What the menus and the actions start of the custom computations: their menu, and a saved configuration.
#include "config/command_line.h"
#include "errors/exception.h"
#include "sessions/custom_menu.h"
#include "sessions/saved_computation.h"
#include "shell/entry_points.h"

namespace kelvara {

void run_custom_compute_menu() {
    CustomSettings settings;
    run_custom_menu(settings);
}

void run_configuration_file(CommandLine& command_line) {
    command_line.take_argument();
    if (!command_line.has_more()) {
        throw qmp::InvalidParametersException("", "Please specify a config file.");
    }
    run_configuration(command_line.take_argument());
}

}  // namespace kelvara
