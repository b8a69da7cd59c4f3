// How many digits of one radix correspond to a count in another: sizes of buffers, labels of progress.
//
// Computed in double precision and truncated. word_to_dec and dec_to_hex add one, so that nothing is ever
// cut; hex_to_dec does not, so that no digit is promised that is not there. A count beyond the range in
// which a double still tells neighbouring counts apart is fatal
// ("word_to_dec(): Float-Indexing Limit Exceeded" and its kin).
#pragma once

#include <cstdint>

namespace qmp {

// Largest counts that the conversions take.
constexpr std::uint64_t word_to_dec_limit = (std::uint64_t{1} << 48) - 1;
constexpr std::uint64_t digit_count_limit = (std::uint64_t{1} << 52) - 1;

// floor(words 64 log10(2)) + 1
std::uint64_t word_to_dec(std::uint64_t words);
// floor(digits log16(10)) + 1
std::uint64_t dec_to_hex(std::uint64_t decimal_digits);
// floor(digits log10(16))
std::uint64_t hex_to_dec(std::uint64_t hexadecimal_digits);

}  // namespace qmp
