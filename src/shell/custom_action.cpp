#include "shell/custom_action.h"

#include <optional>
#include <string>

#include "config/command_line.h"
#include "console/console.h"
#include "console/parse.h"
#include "constants/catalogue.h"
#include "errors/exception.h"
#include "platform/startup_state.h"
#include "sessions/ram_session.h"
#include "sessions/ram_settings.h"
#include "shell/entry_points.h"
#include "shell/option_table.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

std::uint64_t take_count(CommandLine& command_line) {
    return console::parse_int_with_suffix(take_value(command_line));
}

// A negated count of digits per file reads as a very large one: all digits in one file.
std::uint64_t take_signed_count(CommandLine& command_line) {
    return static_cast<std::uint64_t>(console::parse_signed_with_suffix(take_value(command_line)));
}

[[noreturn]] void not_supported_in_this_mode(const std::string& key) {
    throw qmp::InvalidParametersException("", "Option " + key + " is not supported for this mode.");
}

void choose_mode(RamSettings&, CommandLine& command_line) {
    const std::string argument = command_line.current();
    const std::string mode = take_value(command_line);
    if (mode == "ram") return;
    if (mode == "swap") {
        throw qmp::InvalidParametersException("", "Swap Mode is not available in this build yet.");
    }
    throw qmp::InvalidParametersException("", "Invalid Command: " + argument);
}

void choose_output_path(RamSettings& settings, CommandLine& command_line) {
    command_line.take_argument();
    settings.output_path = command_line.take_argument();
}

// A table of the options and what each does to the settings.
const OptionTable<RamSettings>& option_table() {
    static const OptionTable<RamSettings> table = {
        {"-algorithm", [](RamSettings& s, CommandLine& c) { s.set_algorithm(take_value(c)); }},
        {"-dec", [](RamSettings& s, CommandLine& c) { s.set_decimal_digits(take_count(c)); }},
        {"-hex", [](RamSettings& s, CommandLine& c) { s.set_hexadecimal_digits(take_count(c)); }},
        {"-o", choose_output_path},
        {"-C", [](RamSettings& s, CommandLine& c) { s.set_digits_per_file(take_signed_count(c)); }},
        {"-mode", choose_mode},
        {"-MA", [](RamSettings& s, CommandLine& c) { s.set_allocator(take_value(c)); }},
        {"-PF", [](RamSettings& s, CommandLine& c) { s.set_framework(take_value(c)); }},
        {"-TD", [](RamSettings& s,
                   CommandLine& c) { s.set_task_decomposition(console::parse_decimal(take_value(c))); }},
        {"-M", [](RamSettings&, CommandLine&) { not_supported_in_this_mode("-M"); }},
        {"-minIO", [](RamSettings&, CommandLine&) { not_supported_in_this_mode("-minIO"); }},
        {"-swap", [](RamSettings&, CommandLine&) { not_supported_in_this_mode("-swap"); }},
    };
    return table;
}

// The first argument names the constant, and its argument after a colon: "sqrt:2".
void choose_constant(RamSettings& settings, CommandLine& command_line) {
    const auto [key, value] = command_line.take_pair();
    std::unique_ptr<Constant> constant = make_constant(constant_id(key));
    const std::optional<std::uint64_t> argument = console::parse_decimal_that_fits(value);
    if (!argument && constant->argument()) {
        throw qmp::InvalidParametersException("", value + " is out of range.");
    }
    constant->set_argument(argument.value_or(0));
    settings.set_constant(std::move(constant));
}

}  // namespace

void run_custom_action(CommandLine& command_line) {
    command_line.take_argument();
    if (!command_line.has_more()) return run_custom_compute_menu();
    RamSettings settings;
    settings.set_default_folder(program_directory());
    choose_constant(settings, command_line);
    parse_options(option_table(), settings, command_line);

    console::newline();
    settings.check();
    console::newline();
    RamSession(settings).run();
}

}  // namespace kelvara
