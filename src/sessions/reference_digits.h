// The files of digits that are known of a constant.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>

namespace kelvara {

// What is known of a constant: the ten digits that end at a position, as a decimal integer. Positions count
// from 1 behind the point.
inline constexpr std::uint64_t reference_group = 10;
using ReferenceDigits = std::map<std::uint64_t, std::uint64_t>;

// A line is a position, a vertical bar and digits, with blanks or tabulators around each; commas within a
// number are ignored. Lines without a bar, and those of positions below 10, mean nothing. Of a position that
// occurs twice the first line counts, and "Error parsing digit file: Duplicate entries." is printed.
ReferenceDigits parse_reference_digits(std::string_view text);

}  // namespace kelvara
