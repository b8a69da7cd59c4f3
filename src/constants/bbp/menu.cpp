#include "constants/bbp/menu.h"

#include <string>

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "constants/bbp/report.h"
#include "platform/menu_layout.h"
#include "platform/os/process.h"

namespace kelvara::bbp {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t value_column = 32;
constexpr std::int64_t last_option = 5;

void print_formula(Formula formula) {
    console::print_column_line(value_column, "  1     Formula:", name_of(formula), 'Y');
    console::newline();
    for (const char* line : picture_of(formula)) console::println("        " + std::string(line), 'T');
    console::println("", 'w');
}

void print_menu(const Settings& settings) {
    console::println("\n\nKelvara BBP v2.0.5\n", 'P');
    console::println("Current Settings: (select option # to change setting)\n", 'w');
    print_formula(settings.formula);
    console::print_column_line(
        value_column, "  2     Hexadecimal Offset:", console::format_separated(settings.offset), 'G');
    console::print_column(value_column,
                          "  3     Digits to Compute :", console::format_separated(settings.digits), 'G');
    console::write("   Internal Precision: ", 'w');
    console::println(console::format_separated(settings.precision_digits()) + " Hexadecimal Digits", 'Y');
    console::println("", 'w');
    console::print_column_line(
        value_column, "  4     Multi-Threading:",
        console::format_separated(settings.threads) + (settings.threads == 1 ? " thread" : " threads"), 'Y');
    console::print_column_line(value_column,
                               "  5     Pin Threads to Cores:", settings.pin_threads ? "Enabled" : "Disabled",
                               settings.pin_threads ? 'G' : 'R');
    console::newline();
    console::println("  0     Start Computation!", 'w');
    console::newline();
}

Formula ask_formula() {
    const std::string names[] = {name_of_choice(Formula::plouffe), name_of_choice(Formula::bellard)};
    static_assert(std::size(names) == formula_count);
    return static_cast<Formula>(qmp::menu::choose("Select the formula:", names));
}

std::uint64_t ask_offset() {
    console::println("Select the hexadecimal offset: (limit: 2^46 - 1)", 'w');
    return console::read_digit_count_in_range("Offset: ", 0, largest_offset, 'T');
}

std::uint64_t ask_digits() {
    console::println("Select the # of digits to compute after the offset:", 'w');
    return console::read_digit_count_in_range("Digits: ", smallest_digits, largest_digits, 'T');
}

std::uint64_t ask_threads() {
    console::println("Select the # of threads to use:", 'w');
    return static_cast<std::uint64_t>(
        console::read_int_in_range("Threads: ", 1, static_cast<std::int64_t>(largest_threads), 'T'));
}

void change(Settings& settings, std::int64_t option) {
    switch (option) {
        case 1:
            settings.formula = ask_formula();
            break;
        case 2:
            settings.offset = ask_offset();
            break;
        case 3:
            settings.digits = ask_digits();
            break;
        case 4:
            settings.threads = ask_threads();
            break;
        default:
            settings.pin_threads = !settings.pin_threads;
    }
}

}  // namespace

void show_menu(Settings settings) {
    for (;;) {
        print_menu(settings);
        const std::int64_t option = console::read_int_in_range("option: ", 0, last_option, 'T');
        console::newline();
        if (option == 0) break;
        change(settings, option);
    }
    qmp::os::lower_process_priority();
    run_extraction(settings);
}

}  // namespace kelvara::bbp
