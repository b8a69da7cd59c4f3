// The program's start-up around a dispatcher that does what its arguments say, one after another, so that
// tests see the entry and the exit of a real process without a computation in between.
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>

#include "console/console.h"
#include "console/input.h"
#include "console/labels.h"
#include "console/progress.h"
#include "errors/exception.h"
#include "platform/features_screen.h"
#include "platform/os/console_device.h"
#include "platform/startup_state.h"
#include "platform/system_information.h"
#include "shell/driver/faults.h"
#include "shell/program.h"

namespace kelvara {
namespace {

namespace console = qmp::console;
using kelvara_test::commit_fault;
using kelvara_test::commit_fault_on_a_thread;
using kelvara_test::commit_fault_on_a_worker;
using kelvara_test::commit_fault_twice_at_once;

void echo(const std::string& text) {
    console::println(text, 'G');
}

// Every colour letter in its colour; the blank leaves the colour before it.
void show_colours(const std::string&) {
    for (const char letter : std::string("BGTRPYbgtrpy wr-")) console::write(std::string(1, letter), letter);
    console::newline();
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

// On the screen and as in a validation file.
void show_machine(const std::string&) {
    const SystemInformation information = gather_system_info();
    print_system_info(information);
    console::write(system_info_text(information));
}

void throw_own(const std::string&) {
    throw qmp::InvalidParametersException("Driver::throw_own()", "An exception of the program's own.");
}

void throw_standard(const std::string&) {
    throw std::runtime_error("An exception of the library.");
}

void use_fatal_error(const std::string& text) {
    console::fatal_error(text);
}

void raise_signal(const std::string& number) {
    std::raise(std::stoi(number));
}

IntegrityCheck* own_check = nullptr;

void check_again(const std::string&) {
    (*own_check)();
    console::print_label_line("checked again", to_text(own_check->outcome()));
}

// Stays open to the end.
void hold_file(const std::string& path) {
    static std::ofstream file;
    file.open(path);
    file << "!" << std::flush;
}

void touch_file(const std::string& path) {
    std::ofstream file(path);
    file << "!";
}

void wait_for_file(const std::string& path) {
    while (!std::filesystem::exists(path)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

const std::map<std::string, void (*)(const std::string&)> actions = {
    {"echo", echo},
    {"colours", show_colours},
    {"state", show_state},
    {"number", ask_number},
    {"digits", ask_digits},
    {"line", ask_line},
    {"steps", show_steps},
    {"throw", throw_own},
    {"throw-standard", throw_standard},
    {"fatal", use_fatal_error},
    {"fault", commit_fault},
    {"thread-fault", commit_fault_on_a_thread},
    {"worker-fault", commit_fault_on_a_worker},
    {"twin-faults", commit_fault_twice_at_once},
    {"raise", raise_signal},
    {"check-again", check_again},
    {"touch", touch_file},
    {"hold", hold_file},
    {"wait-for", wait_for_file},
    {"features", show_features},
    {"machine", show_machine},
};

void dispatch_test_actions(CommandLine& command_line, IntegrityCheck& integrity_check) {
    integrity_check();
    own_check = &integrity_check;
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
