#include "shell/program.h"

#include <exception>

#include "console/console.h"
#include "errors/exception.h"
#include "platform/os/process.h"
#include "platform/startup_state.h"

namespace kelvara {

namespace console = qmp::console;

int run_guarded(const std::function<int()>& routine, bool debugger_present) {
    // A debugger wants to see an exception where it is thrown.
    if (debugger_present) return routine();
    try {
        return routine();
    } catch (const qmp::Exception& exception) {
        exception.print();
    } catch (const std::exception& exception) {
        console::print_label_line("Uncaught std exception", exception.what(), 'R');
        console::reset_color();
    }
    return 0;
}

bool pauses_at_exit(int pause_mode, bool console_is_fresh) {
    return pause_mode > 0 || (pause_mode == 0 && console_is_fresh);
}

int run_program(Dispatcher dispatcher) {
    qmp::os::prepare_process();
    record_program_start();
    const StartupState& state = startup_state();
    CommandLine command_line(state.arguments);
    if (state.console_is_fresh) console::set_window_size(80, 25);

    const int exit_code =
        run_guarded([&] { return start_up(command_line, dispatcher); }, qmp::os::debugger_present());

    console::reset_color();
    console::newline();
    if (pauses_at_exit(state.pause_mode, state.console_is_fresh)) console::pause();
    return exit_code;
}

}  // namespace kelvara
