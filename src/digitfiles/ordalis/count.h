// Counts how often each digit occurs.
#pragma once

#include <cstdint>

#include "digitfiles/digit_reader.h"

namespace Ordalis {

// Digits after which a pass through a file tells how far it has come.
constexpr std::uint64_t digits_per_line = 1000000000;

// Asks for a range and counts it.
void run_count(qmp::DigitReader& reader);

// Counts the digits [start, end). Prints a line with the counts so far after every `digits_per_line` of them
// and after the last: "1 - 100 :\t{8,8,12,11,10,8,9,8,12,14}".
void count_digits(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end,
                  std::uint64_t line_digits = digits_per_line);

}  // namespace Ordalis
