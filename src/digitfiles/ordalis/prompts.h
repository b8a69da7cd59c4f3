// What the operations of the viewer ask for and tell alike. Digits are numbered from 1 at the prompts, 1
// being the first behind the point, and from 0 everywhere else.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "digitfiles/digit_reader.h"

namespace Ordalis {

// Of a result that is written into several files, each takes at least so many digits.
constexpr std::uint64_t least_digits_in_file = 1000000;

// A line of a menu, and what stands behind its text.
void print_option(int option, std::string_view text, std::string_view remark = {});
// "What would you like to do?" and the first options, which all files have; the hash is one of decimal
// digits.
void print_operations(bool decimal);
// "Enter your choice:" and a number from 0 to `last`.
std::int64_t ask_option(std::int64_t last);

// The number of the last digit, or the largest there is where nobody knows it.
std::uint64_t last_digit(const qmp::DigitReader& reader);
// A number from `low` to `high`.
std::uint64_t ask_count(std::string_view prompt, std::uint64_t low, std::uint64_t high);
std::uint64_t ask_starting_digit(const qmp::DigitReader& reader);

// The folder of new files; "." for an answer that is empty or begins with a blank.
std::string ask_destination_folder();

// A character of a file as it may be shown: what a damaged file holds must not command the terminal.
char printable(char c);
// The integer part and the point, or whatever stands there instead, as it may be shown.
std::string shown_first_digits(qmp::DigitReader& reader);
// The integer part and the point, or whatever stands there instead.
std::string first_digits(qmp::DigitReader& reader);

// True when the digits [start, end) are there; tells so when they are not. A reader that does not know its
// total may learn it from the files that it opens for this.
bool is_accessible(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end);
void print_not_accessible();

}  // namespace Ordalis
