#include "shell/custom_action.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "config/command_line.h"
#include "console/console.h"
#include "console/parse.h"
#include "constants/catalogue.h"
#include "errors/exception.h"
#include "sessions/custom_settings.h"
#include "shell/entry_points.h"
#include "shell/option_table.h"
#include "swap/raid_menu.h"

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

// For an option that only Swap Mode has.
SwapSettings& swap_settings(CustomSettings& settings, const std::string& key) {
    if (SwapSettings* swap = settings.swap()) return *swap;
    throw qmp::InvalidParametersException("", "Option " + key + " is not supported for this mode.");
}

void choose_mode(CustomSettings& settings, CommandLine& command_line) {
    const std::string argument = command_line.current();
    const auto mode = mode_of_key(take_value(command_line));
    if (!mode) throw qmp::InvalidParametersException("", "Invalid Command: " + argument);
    settings.set_mode(*mode);
}

void choose_output_path(CustomSettings& settings, CommandLine& command_line) {
    command_line.take_argument();
    settings.current().output_path = command_line.take_argument();
}

void choose_memory(CustomSettings& settings, CommandLine& command_line) {
    swap_settings(settings, "-M").set_memory_cap(console::parse_bytes(take_value(command_line)));
}

void choose_bytes_per_seek(CustomSettings& settings, CommandLine& command_line) {
    swap_settings(settings, "-minIO").set_bytes_per_seek(console::parse_bytes(take_value(command_line)));
}

// "-swap:raid0 FOLDER...", or "-swap raid0 FOLDER...".
void choose_swap_files(CustomSettings& settings, CommandLine& command_line) {
    SwapSettings& swap = swap_settings(settings, "-swap");
    qmp::RaidSettings raid;
    const std::string error = qmp::read_raid_arguments(raid, take_value(command_line), command_line);
    if (!error.empty()) throw qmp::InvalidParametersException("", error);
    swap.set_raid(std::move(raid));
}

// A table of the options and what each does to the settings.
const OptionTable<CustomSettings>& option_table() {
    static const OptionTable<CustomSettings> table = {
        {"-algorithm", [](CustomSettings& s, CommandLine& c) { s.current().set_algorithm(take_value(c)); }},
        {"-dec", [](CustomSettings& s, CommandLine& c) { s.current().set_decimal_digits(take_count(c)); }},
        {"-hex",
         [](CustomSettings& s, CommandLine& c) { s.current().set_hexadecimal_digits(take_count(c)); }},
        {"-o", choose_output_path},
        {"-C",
         [](CustomSettings& s, CommandLine& c) { s.current().set_digits_per_file(take_signed_count(c)); }},
        {"-mode", choose_mode},
        {"-MA", [](CustomSettings& s, CommandLine& c) { s.current().set_allocator(take_value(c)); }},
        {"-PF", [](CustomSettings& s, CommandLine& c) { s.current().set_framework(take_value(c)); }},
        {"-TD",
         [](CustomSettings& s, CommandLine& c) {
             s.current().set_task_decomposition(console::parse_decimal(take_value(c)));
         }},
        {"-M", choose_memory},
        {"-minIO", choose_bytes_per_seek},
        {"-swap", choose_swap_files},
    };
    return table;
}

// The first argument names the constant, and its argument after a colon: "sqrt:2".
void choose_constant(CustomSettings& settings, CommandLine& command_line) {
    const auto [key, value] = command_line.take_pair();
    std::unique_ptr<Constant> constant = make_constant(constant_id(key));
    const std::optional<std::uint64_t> argument = console::parse_decimal_that_fits(value);
    if (!argument && constant->argument()) {
        throw qmp::InvalidParametersException("", value + " is out of range.");
    }
    constant->set_argument(argument.value_or(0));
    settings.current().set_constant(std::move(constant));
}

}  // namespace

void run_custom_action(CommandLine& command_line) {
    command_line.take_argument();
    if (!command_line.has_more()) return run_custom_compute_menu();
    CustomSettings settings;
    choose_constant(settings, command_line);
    parse_options(option_table(), settings, command_line);

    console::newline();
    settings.current().check();
    console::newline();
    settings.current().run();
}

}  // namespace kelvara
