#include "sessions/custom_menu.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "console/labels.h"
#include "constants/catalogue.h"
#include "digitfiles/qcd_file_writer.h"
#include "errors/exception.h"
#include "platform/os/process.h"
#include "sessions/memory_checks.h"
#include "sessions/mode_menu.h"
#include "sessions/output_format_menu.h"
#include "sessions/saved_computation.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t narrow_column = 20;
constexpr std::uint64_t wide_column = 30;
constexpr std::int64_t last_option = 21;

std::string output_format_text(std::uint64_t digits_per_file) {
    if (digits_per_file == 0) return "None - Write digits to a text file.";
    return "Compress digits into one .qcd file.";
}

void print_output_format(std::uint64_t digits_per_file) {
    const char* label = "  6     Compress Output:";
    const bool several_files = digits_per_file != 0 && digits_per_file != qmp::unlimited_digits_per_file;
    if (!several_files) {
        console::print_column_line(wide_column, label, output_format_text(digits_per_file), 'T');
        return;
    }
    console::print_column(wide_column, label, "Compress with ", 'T');
    console::write(console::format_separated(digits_per_file), 'Y');
    console::println(" digits per file.", 'T');
}

void print_choices(const ComputationSettings& settings) {
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
    console::print_column_line(wide_column, "  7     Computation Mode:", settings.mode_name(),
                               settings.mode() == ComputationMode::swap ? 'G' : 'R');
    console::print_column(wide_column, "  8     Multi-Threading:", "", 'w');
    settings.framework().print_summary(settings.task_decomposition());
    console::newline();
    console::newline();
}

void print_file_options() {
    console::println("  20    Load from Configuration File", 'g');
    console::println("  21    Save to Configuration File", 'g');
    console::println("", 'w');
}

// True when the settings can run. The menu ends early when the machine has no addresses for so much memory.
bool print_menu(const ComputationSettings& settings) {
    print_choices(settings);
    const std::optional<std::uint64_t> memory = settings.print_menu_options();
    if (memory && !fits_address_space(*memory)) return false;
    print_file_options();
    console::println("  0     Start Computation!", 'w');
    if (!memory) return false;
    warn_of_physical_memory(*memory);
    const std::string obstacle = settings.obstacle();
    if (obstacle.empty()) return true;
    console::println("        Cannot Start: " + obstacle, 'R');
    console::reset_color();
    return false;
}

void ask_decimal_digits(ComputationSettings& settings) {
    console::println("Select the # of decimal digits to compute:", 'w');
    console::newline();
    settings.set_decimal_digits(console::ask_digit_count("Digits: ", 0, std::numeric_limits<std::uint64_t>::max()));
}

void ask_hexadecimal_digits(ComputationSettings& settings) {
    console::println("Select the # of hexadecimal digits to compute: (0 to disable)", 'w');
    console::newline();
    settings.set_hexadecimal_digits(console::ask_digit_count("Digits: ", 0, std::numeric_limits<std::uint64_t>::max()));
}

void ask_output_path(ComputationSettings& settings) {
    const bool drives = qmp::os::system_name() == "Windows";
    console::println(drives ? "Enter the path to write the digits to. (e.g. \"C:\" or \"C:/temp\" )"
                            : "Enter the path to write the digits to. (e.g. \"/tmp\" or \"digits\" )",
                     'w');
    console::newline();
    settings.output_path = console::read_labelled_line("Path", 'T');
}

// Acts on what the modes share.
void act(CustomSettings& custom, std::int64_t option) {
    ComputationSettings& settings = custom.current();
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
            ask_mode(custom);
            break;
        case 8:
            settings.edit_parallelization();
            break;
        case 20:
            custom = load_computation();
            break;
        case 21:
            save_computation(settings);
            break;
        default:
            settings.handle_menu_option(option);
    }
}

// True when the user wants the computation.
bool step(CustomSettings& custom) {
    const bool can_start = print_menu(custom.current());
    const std::int64_t option = console::read_int_in_range("option: ", can_start ? 0 : 1, last_option, 'T');
    console::newline();
    if (option == 0) return true;
    act(custom, option);
    return false;
}

}  // namespace

void run_custom_menu(CustomSettings& settings) {
    for (bool start = false; !start;) {
        console::newline();
        try {
            start = step(settings);
        } catch (const qmp::Exception& exception) {
            exception.print();
        }
    }
    settings.current().run();
}

}  // namespace kelvara
