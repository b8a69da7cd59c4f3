#include "console/console.h"
#include "console/format.h"
#include "digitfiles/ordalis/count.h"
#include "digitfiles/ordalis/menus.h"
#include "digitfiles/ordalis/prefix_hash.h"
#include "digitfiles/ordalis/prompts.h"
#include "digitfiles/ordalis/view.h"
#include "digitfiles/ordalis/write_compressed.h"

namespace Ordalis {

namespace console = qmp::console;

namespace {

constexpr std::uint64_t column = 35;

}  // namespace

void run_text_menu(qmp::DigitReader& reader, const std::string& path) {
    const bool decimal = reader.get_radix() == 10;
    console::println("\n\nText File\n", 'P');
    console::print_column_line(
        column, "Total Digits after decimal place:", console::format_separated(reader.get_digits()), 'G');
    console::print_column_line(column, "First Digits:", shown_first_digits(reader), 'Y');
    console::newline();
    print_operations(decimal);
    print_option(3, "Compress the digits into one or more .qcd file.");
    switch (ask_option(3)) {
        case 0:
            return run_view(reader);
        case 1:
            return run_count(reader);
        case 2:
            if (decimal) run_hash(reader, path);
            return;
        default:
            run_write_compressed(reader);
    }
}

}  // namespace Ordalis
