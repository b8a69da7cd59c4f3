#include "sessions/output_format_menu.h"

#include <cstdint>
#include <limits>

#include "console/console.h"
#include "console/input.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t least_digits = 1'000'000;
constexpr std::uint64_t one_file = std::numeric_limits<std::uint64_t>::max();

bool is_too_small(const ComputationSettings& settings) {
    const std::uint64_t hexadecimal = settings.hexadecimal_digits();
    return settings.decimal_digits() < least_digits || (hexadecimal > 0 && hexadecimal < least_digits);
}

std::int64_t ask_format() {
    console::println("Select an Output Format:\n", 'w');
    console::println("  0     Write to a text file. Do not compress.", 'G');
    console::println("  1     Compress digits into a single .qcd file.");
    console::println("  2     Compress digits into multiple .qcd files with a user-specified");
    console::println("        number of digits per file.\n");
    console::reset_color();
    return console::read_int_in_range("option: ", 0, 2, 'T');
}

}  // namespace

void ask_output_format(ComputationSettings& settings) {
    if (is_too_small(settings)) {
        console::println("Computation is too small for compression.\n");
        console::pause();
        return;
    }
    switch (ask_format()) {
        case 1:
            settings.set_digits_per_file(one_file);
            break;
        case 2:
            console::newline();
            settings.set_digits_per_file(console::ask_digit_count("Digits per file: ", least_digits,
                                                                  settings.constant().max_digits()));
            break;
        default:
            settings.set_digits_per_file(0);
    }
    console::newline();
}

}  // namespace kelvara
