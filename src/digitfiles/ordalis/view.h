// Shows digits in rows of 50.
#pragma once

#include <cstdint>
#include <string_view>

#include "digitfiles/digit_reader.h"

namespace Ordalis {

// Asks for a range and shows it.
void run_view(qmp::DigitReader& reader);

// Shows the digits [start, start + count), as many of them as there are.
void view_digits(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t count);

// Digits of which the first is the one at position `start`. They stand in the columns that they have when the
// rows begin with the first digit behind the point; full rows end with the number of their last digit.
void print_digit_rows(std::string_view digits, std::uint64_t start);

}  // namespace Ordalis
