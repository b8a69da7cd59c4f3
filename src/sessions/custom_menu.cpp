#include "sessions/custom_menu.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "console/labels.h"
#include "constants/catalogue.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/os/process.h"
#include "sessions/memory_checks.h"
#include "sessions/memory_menu.h"
#include "sessions/mode_menu.h"
#include "sessions/output_format_menu.h"
#include "sessions/ram_session.h"
#include "sessions/saved_computation.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t narrow_column = 20;
constexpr std::uint64_t wide_column = 30;
constexpr std::int64_t last_option = 21;
constexpr std::uint64_t largest_count = std::numeric_limits<std::uint64_t>::max();

std::string output_format_text(std::uint64_t digits_per_file) {
    if (digits_per_file == 0) return "None - Write digits to a text file.";
    return "Compress digits into one .qcd file.";
}

void print_output_format(std::uint64_t digits_per_file) {
    const char* label = "  6     Compress Output:";
    const bool several_files = digits_per_file != 0 && digits_per_file != largest_count;
    if (!several_files) {
        console::print_column_line(wide_column, label, output_format_text(digits_per_file), 'T');
        return;
    }
    console::print_column(wide_column, label, "Compress with ", 'T');
    console::write(console::format_separated(digits_per_file), 'Y');
    console::println(" digits per file.", 'T');
}

void print_choices(const RamSettings& settings) {
    console::println("\n\nCustom Compute a Constant\n", 'P');
    const Constant& constant = settings.constant();
    console::print_column_line(narrow_column, "  1     Constant:", constant.full_name(), constant.colour());
    console::print_column_line(narrow_column, "  2     Algorithm:", constant.algorithm_name(), 'Y');
    console::newline();
    console::print_column_separated(wide_column, "  3     Decimal Digits:", settings.decimal_digits(), 'G');
    if (settings.hexadecimal_digits() == 0) {
        console::print_column_line(wide_column, "  4     Hexadecimal Digits:", "Disabled", 'g');
    } else {
        console::print_column_separated(wide_column,
                                        "  4     Hexadecimal Digits:", settings.hexadecimal_digits(), 'G');
    }
    console::newline();
    console::print_column_line(wide_column, "  5     Write Digits To:",
                               settings.output_path.empty() ? "Default Path" : settings.output_path, 'T');
    print_output_format(settings.digits_per_file());
    console::println("", 'w');
    console::print_column_line(wide_column, "  7     Computation Mode:", "Ram Only", 'R');
    console::print_column(wide_column, "  8     Multi-Threading:", "", 'w');
    settings.framework().print_summary(settings.task_decomposition());
    console::newline();
    console::newline();
}

// Two text files: the digits, the point, and what stands before it.
std::uint64_t output_bytes(const RamSettings& settings) {
    constexpr std::uint64_t whole_part = 22;
    const std::uint64_t hexadecimal = settings.hexadecimal_digits();
    return settings.decimal_digits() + whole_part + (hexadecimal > 0 ? hexadecimal + whole_part : 0);
}

// The computation's memory in bytes, or nothing, after a line that says so, when this build has none.
std::optional<std::uint64_t> print_needs(const RamSettings& settings) {
    std::unique_ptr<RamComputation> computation;
    try {
        computation = settings.make_computation();
    } catch (const qmp::InvalidParametersException& exception) {
        console::println("        " + exception.message(), 'R');
        console::println("", 'w');
        return std::nullopt;
    }
    const std::uint64_t memory = computation->memory_estimate();
    console::print_column_separated_bytes(wide_column, "  9     Memory Needed", memory, 'Y');
    console::print_column(wide_column, "        Disk Needed", console::format_separated_bytes(0), 'y');
    console::write("  +  ", 'w');
    console::write(console::format_separated_bytes(output_bytes(settings)), 'P');
    console::println(" for output", 'w');
    console::newline();
    return memory;
}

void print_file_options() {
    console::println("  20    Load from Configuration File", 'g');
    console::println("  21    Save to Configuration File", 'g');
    console::println("", 'w');
}

// Without a folder for the digits, a line that says so and false: the answer 0 is then refused.
bool can_write_digits(const RamSettings& settings) {
    try {
        settings.check();
        return true;
    } catch (const qmp::FileIO::FileException& exception) {
        console::println("        Cannot Start: " + exception.message(), 'R');
        console::reset_color();
        return false;
    }
}

// True when the settings can run. The menu ends early when the machine has no addresses for so much memory.
bool print_menu(const RamSettings& settings) {
    print_choices(settings);
    const std::optional<std::uint64_t> memory = print_needs(settings);
    if (memory && !fits_address_space(*memory)) return false;
    print_file_options();
    console::println("  0     Start Computation!", 'w');
    if (!memory) return false;
    warn_of_physical_memory(*memory);
    return can_write_digits(settings);
}

void ask_decimal_digits(RamSettings& settings) {
    console::println("Select the # of decimal digits to compute:", 'w');
    console::newline();
    settings.set_decimal_digits(console::ask_digit_count("Digits: ", 0, largest_count));
}

void ask_hexadecimal_digits(RamSettings& settings) {
    console::println("Select the # of hexadecimal digits to compute: (0 to disable)", 'w');
    console::newline();
    settings.set_hexadecimal_digits(console::ask_digit_count("Digits: ", 0, largest_count));
}

void ask_output_path(RamSettings& settings) {
    const bool drives = qmp::os::system_name() == "Windows";
    console::println(drives ? "Enter the path to write the digits to. (e.g. \"C:\" or \"C:/temp\" )"
                            : "Enter the path to write the digits to. (e.g. \"/tmp\" or \"digits\" )",
                     'w');
    console::newline();
    settings.output_path = console::read_labelled_line("Path", 'T');
}

void act(RamSettings& settings, std::int64_t option) {
    switch (option) {
        case 1:
            settings.set_constant(ask_constant());
            break;
        case 2:
            settings.ask_algorithm();
            break;
        case 3:
            ask_decimal_digits(settings);
            break;
        case 4:
            ask_hexadecimal_digits(settings);
            break;
        case 5:
            ask_output_path(settings);
            break;
        case 6:
            ask_output_format(settings);
            break;
        case 7:
            ask_mode(settings);
            break;
        case 8:
            settings.edit_parallelization();
            break;
        case 9:
            edit_memory(settings);
            break;
        case 20:
            settings = load_computation();
            break;
        case 21:
            save_computation(settings);
            break;
        default:
            break;
    }
}

// True when the user wants the computation.
bool step(RamSettings& settings) {
    const bool can_start = print_menu(settings);
    const std::int64_t option = console::read_int_in_range("option: ", can_start ? 0 : 1, last_option, 'T');
    console::newline();
    if (option == 0) return true;
    act(settings, option);
    return false;
}

}  // namespace

void run_custom_menu(RamSettings& settings) {
    for (bool start = false; !start;) {
        console::newline();
        try {
            start = step(settings);
        } catch (const qmp::Exception& exception) {
            exception.print();
        }
    }
    RamSession(settings).run();
}

}  // namespace kelvara
