// The program's start-up around a dispatcher that does what its arguments say, one after another, so that
// tests see the entry and the exit of a real process without a computation in between.
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>

#include "console/console.h"
#include "console/input.h"
#include "console/labels.h"
#include "console/progress.h"
#include "errors/exception.h"
#include "platform/features_screen.h"
#include "platform/os/console_device.h"
#include "platform/startup_state.h"
#include "shell/program.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

void echo(const std::string& text) {
    console::println(text, 'G');
}

void show_state(const std::string&) {
    const StartupState& state = startup_state();
    console::print_label_signed("pause mode", state.pause_mode, 'Y');
    console::print_label_signed("personal data", state.personal_data_shown, 'Y');
    console::print_label_signed("skip warnings", state.skip_warnings, 'Y');
    console::print_label_signed("fresh", state.console_is_fresh, 'Y');
    console::print_label_line("directory", state.program_directory, 'Y');
}

void ask_number(const std::string&) {
    console::print_label_signed("answer", console::read_int_in_range("option: ", 1, 9, 'T'));
}

void ask_digits(const std::string&) {
    console::print_label_separated("answer", console::ask_digit_count("digits: ", 100, 1'000'000'000));
}

void ask_line(const std::string&) {
    console::println("[" + console::read_labelled_line("name", 'T') + "]");
}

void show_steps(const std::string&) {
    qmp::ConsoleProgress progress;
    progress.begin_step("Summing Series...  ", "Summing Series");
    progress.note("Summing: 4,061 terms", 'G');
    {
        const qmp::ScopedLabel series(&progress, "Series: 1 / 3", 'G');
        const qmp::ScopedLabel size(&progress, " -> 512", 'Y');
        const qmp::ScopedLabel path(&progress, std::string(200, '0'), 'B');
        progress.message("A part was done again.", 'R');
    }
    progress.end_step();
}

void show_features(const std::string&) {
    qmp::print_features();
}

void throw_own(const std::string&) {
    throw qmp::InvalidParametersException("Driver::throw_own()", "An exception of the program's own.");
}

void throw_standard(const std::string&) {
    throw std::runtime_error("An exception of the library.");
}

void crash(const std::string&) {
    // Volatile, so that the compiler takes neither the store nor the address at its word.
    volatile std::uintptr_t address = 16;
    *reinterpret_cast<volatile int*>(address) = 1;
}

// Never reaches its end, which the compiler must not see.
int use_stack(int depth) {
    volatile char room[65536];
    room[0] = 1;
    return depth < 0 ? 0 : use_stack(depth == 1'000'000'000 ? 1 : depth + 1) + room[0];
}

void overflow_stack(const std::string& depth) {
    console::print_label_signed("depth", use_stack(depth.empty() ? 1 : -1));
}

void end_badly(const std::string&) {
    std::abort();
}

void use_fatal_error(const std::string& text) {
    console::fatal_error(text);
}

const std::map<std::string, void (*)(const std::string&)> actions = {
    {"echo", echo},
    {"state", show_state},
    {"number", ask_number},
    {"digits", ask_digits},
    {"line", ask_line},
    {"steps", show_steps},
    {"throw", throw_own},
    {"throw-standard", throw_standard},
    {"crash", crash},
    {"overflow", overflow_stack},
    {"abort", end_badly},
    {"fatal", use_fatal_error},
    {"features", show_features},
};

void dispatch_test_actions(CommandLine& command_line, IntegrityCheck& integrity_check) {
    integrity_check();
    console::print_label_line("integrity", to_text(integrity_check.outcome()));
    while (command_line.has_more()) {
        const auto action = actions.find(command_line.current_key());
        if (action == actions.end()) console::fatal_error("Invalid Parameter: " + command_line.current_key());
        action->second(command_line.take_pair().second);
    }
}

}  // namespace
}  // namespace kelvara

int main() {
    qmp::os::restore_console_when_interrupted();
    return kelvara::run_program(kelvara::dispatch_test_actions);
}
