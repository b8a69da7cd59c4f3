#include "sessions/output_format_menu.h"

#include <cstdint>

#include "console/console.h"
#include "console/input.h"
#include "digitfiles/qcd_file_writer.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

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
    if (settings.too_small_to_compress()) {
        console::println("Computation is too small for compression.\n");
        console::pause();
        return;
    }
    switch (ask_format()) {
        case 1:
            settings.set_digits_per_file(qmp::unlimited_digits_per_file);
            break;
        case 2:
            console::newline();
            settings.set_digits_per_file(
                console::ask_digit_count("Digits per file: ", ComputationSettings::least_compressed_digits,
                                         settings.constant().max_digits()));
            break;
        default:
            settings.set_digits_per_file(0);
    }
    console::newline();
}

}  // namespace kelvara
