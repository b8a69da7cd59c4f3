// How large a computation may be, and the working precision that a size needs.
//
// Sizes are counts of decimal digits after the point. Pure functions; any thread.
#pragma once

#include <cstdint>

namespace kelvara {

constexpr std::uint64_t smallest_digits = 100;
constexpr std::uint64_t largest_digits = 1000000000000050;

// Throws qmp::InvalidParametersException when `digits` is below smallest_digits or above `largest`.
void check_digits(std::uint64_t digits, std::uint64_t largest = largest_digits);

// Working precision in words: the hexadecimal digits that `digits` decimal digits make, sixteen to a word,
// and two words to spare. Fatal from 2^52 digits on ("dec_to_hex(): Float-Indexing Limit Exceeded").
std::uint64_t precision_for_digits(std::uint64_t digits);

}  // namespace kelvara
