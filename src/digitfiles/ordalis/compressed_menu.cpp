#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "digitfiles/ordalis/count.h"
#include "digitfiles/ordalis/menus.h"
#include "digitfiles/ordalis/prefix_hash.h"
#include "digitfiles/ordalis/prompts.h"
#include "digitfiles/ordalis/recompress.h"
#include "digitfiles/ordalis/view.h"
#include "digitfiles/ordalis/write_text.h"

namespace Ordalis {

namespace console = qmp::console;

namespace {

void print_line(std::string_view label, std::string_view value, console::Colour colour) {
    console::print_column_line(console::default_column, label, value, colour);
}

void print_file(qmp::QCDReader& reader) {
    const std::uint64_t total = reader.get_digits();
    console::println("\n\nCompressed Digit File\n", 'P');
    print_line("Digits Found:",
               total != 0 ? console::format_separated(total) : "Unknown - Extended File Format", 'G');
    print_line("First Digits:", shown_first_digits(reader), 'Y');
    print_line("Digits per File:", console::format_separated(reader.digits_per_file()), 'Y');
    console::println("Search paths:", 'w');
    for (const std::string& folder : reader.search_paths()) console::println("    " + folder, 'Y');
    console::reset_color();
    console::newline();
}

void print_options(bool decimal) {
    print_operations(decimal);
    print_option(3, "Decompress a range of digits to a text file.");
    print_option(4, "Recompress a range of digits to one or more .qcd files.");
    console::println("        (Advanced - Don't use unless you know what you're doing...)", 'Y');
    console::newline();
    print_option(5, "Add search directory.", " (if .qcd files are in multiple paths)");
}

void add_search_folder(qmp::QCDReader& reader) {
    console::println("\nEnter directory:", 'w');
    const std::string folder = console::read_line('T');
    if (!folder.empty()) reader.add_search_path(folder);
}

}  // namespace

void run_compressed_menu(qmp::QCDReader& reader, const std::string& path) {
    const bool decimal = reader.get_radix() == 10;
    for (;;) {
        print_file(reader);
        print_options(decimal);
        switch (ask_option(5)) {
            case 0:
                return run_view(reader);
            case 1:
                return run_count(reader);
            case 2:
                if (decimal) run_hash(reader, path);
                return;
            case 3:
                return run_write_text(reader);
            case 4:
                return run_recompress(reader);
            default:
                add_search_folder(reader);
        }
    }
}

}  // namespace Ordalis
