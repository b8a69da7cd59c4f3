#include "platform/startup_state.h"

#include "console/console.h"
#include "platform/os/console_device.h"
#include "platform/os/process.h"

namespace kelvara {

StartupState& startup_state() {
    static StartupState state;
    return state;
}

const std::string& program_directory() {
    return startup_state().program_directory;
}

std::string directory_of(std::string_view path) {
    return std::string(path.substr(0, path.find_last_of("/\\") + 1));
}

void record_program_start() {
    StartupState& state = startup_state();
    // First: anything printed moves the cursor.
    state.console_is_fresh = qmp::os::console_is_fresh();
    state.arguments = qmp::os::arguments();
    record_program_path(qmp::os::program_path());
}

void record_program_path(const std::optional<std::string>& path) {
    if (!path) {
        qmp::console::print_warning("Failed to retrieve path.");
        qmp::console::terminate(1);
    }
    StartupState& state = startup_state();
    state.program_path = *path;
    state.program_directory = directory_of(state.program_path);
}

}  // namespace kelvara
