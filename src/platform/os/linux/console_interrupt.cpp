#include <time.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>

#include "platform/os/console_device.h"
#include "platform/os/linux/console_state.h"

namespace qmp::os {
namespace {

constexpr int ending_signals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

// Other threads go on printing while a signal is handled. Their writes end soon; the one that the signal
// interrupted on its own thread does not, so the wait is short.
void stop_writers() {
    constexpr timespec moment{0, 1'000'000};
    console_is_closed = true;
    for (int i = 0; i < 20 && console_writers > 0; ++i) nanosleep(&moment, nullptr);
}

// Only calls that are safe in a signal. Whatever fails here fails because the terminal is gone.
void restore_console(int signal) {
    static constexpr char default_colour[] = "\x1b[0m";
    if (terminal_is_uncooked) tcsetattr(STDIN_FILENO, TCSANOW, &cooked_terminal);
    if (console_was_coloured) {
        stop_writers();
        [[maybe_unused]] const auto written = write(STDOUT_FILENO, default_colour, sizeof default_colour - 1);
    }
    // By default again since the handler was entered: the parent sees the true cause.
    raise(signal);
}

}  // namespace

void restore_console_when_interrupted() {
    for (const int signal : ending_signals) {
        struct sigaction action {};
        // What the parent chose to have ignored ("nohup") stays ignored.
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        action.sa_handler = restore_console;
        action.sa_flags = SA_RESETHAND | SA_NODEFER;
        sigemptyset(&action.sa_mask);
        // In the background, a change of the terminal would stop the process instead.
        sigaddset(&action.sa_mask, SIGTTOU);
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace qmp::os
