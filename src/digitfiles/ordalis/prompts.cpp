#include "digitfiles/ordalis/prompts.h"

#include <algorithm>
#include <limits>

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "digitfiles/text_reader.h"

namespace Ordalis {

namespace console = qmp::console;

void print_option(int option, std::string_view text, std::string_view remark) {
    console::write("  " + std::to_string(option) + "     ", 'w');
    console::write(text, 'G');
    console::println(remark, 'Y');
    console::reset_color();
}

void print_operations(bool decimal) {
    console::println("What would you like to do?\n", 'w');
    print_option(0, "View a small range of digits.");
    print_option(1, "Count up the # of instances of each digit.");
    if (decimal) print_option(2, "Compute hash: Floor(x * 10^digits) mod (2^61 - 1)");
}

std::int64_t ask_option(std::int64_t last) {
    console::println("\nEnter your choice:", 'w');
    return console::read_int_in_range("option: ", 0, last, 'T');
}

std::uint64_t last_digit(const qmp::DigitReader& reader) {
    const std::uint64_t total = reader.get_digits();
    return total != 0 ? total : std::numeric_limits<std::uint64_t>::max();
}

std::uint64_t ask_count(std::string_view prompt, std::uint64_t low, std::uint64_t high) {
    return console::read_digit_count_in_range(prompt, low, high, 'T');
}

std::uint64_t ask_starting_digit(const qmp::DigitReader& reader) {
    return ask_count("Starting Digit: ", 1, last_digit(reader));
}

std::string ask_destination_folder() {
    console::println("\nEnter the destination path (SPACE for default):", 'w');
    std::string folder = console::read_line('T');
    if (folder.empty() || folder.front() == ' ') return ".";
    return folder;
}

std::string first_digits(qmp::DigitReader& reader) {
    std::string digits = reader.get_first_digits(qmp::TextReader::largest_header);
    const std::size_t point = digits.find('.');
    if (point != std::string::npos) digits.resize(point + 1);
    return digits;
}

char printable(char c) {
    return c >= ' ' && c <= '~' ? c : '?';
}

std::string shown_first_digits(qmp::DigitReader& reader) {
    std::string digits = first_digits(reader);
    std::ranges::transform(digits, digits.begin(), printable);
    return digits;
}

bool is_accessible(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end) {
    // The total is asked for afterwards, when it may be known.
    if (reader.check_range(start, end) && end <= last_digit(reader)) return true;
    print_not_accessible();
    return false;
}

void print_not_accessible() {
    console::println("This range of digits is not accessible.", 'R');
    console::reset_color();
}

}  // namespace Ordalis
