#include "digitfiles/ordalis/view.h"

#include <algorithm>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "digitfiles/ordalis/prompts.h"

namespace Ordalis {

namespace console = qmp::console;

namespace {

constexpr std::uint64_t most_digits = 100000;
constexpr std::uint64_t row_digits = 50;
constexpr std::uint64_t group_digits = 10;

}  // namespace

void run_view(qmp::DigitReader& reader) {
    console::println("\n\nView a Range of Digits\n", 'P');
    const std::uint64_t first = ask_starting_digit(reader);
    const std::uint64_t left = last_digit(reader) - first;
    const std::uint64_t most = left < most_digits ? left + 1 : most_digits;
    const std::uint64_t count = ask_count("Digits to View: ", 1, most);
    console::newline();
    view_digits(reader, first - 1, count);
}

void view_digits(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t count) {
    if (!reader.check_range(start, start + count)) return print_not_accessible();
    reader.set_raw(false);
    // Now the total may be known, even where it was not when the range was asked for.
    const std::uint64_t end = last_digit(reader);
    if (start >= end) {
        console::println("No digits to view.");
        return;
    }
    std::string digits(std::min(count, end - start), '-');
    reader.read(start, digits.data(), digits.size());
    print_digit_rows(digits, start);
}

void print_digit_rows(std::string_view digits, std::uint64_t start) {
    const std::uint64_t end = start + digits.size();
    std::string row;
    for (std::uint64_t position = start - start % row_digits; position < end;) {
        row += position < start ? ' ' : printable(digits[position - start]);
        ++position;
        if (position % group_digits == 0) row += ' ';
        if (position % row_digits == 0) {
            console::write(row, 'Y');
            console::println(" :  " + console::format_separated(position), 'G');
            row.clear();
        }
    }
    if (!row.empty()) console::println(row, 'Y');
    console::reset_color();
}

}  // namespace Ordalis
