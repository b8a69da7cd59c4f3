// Quotients of numbers that divide without remainder, from the lowest word up (Jebelean, "An algorithm for
// exact division", 1993): no word of a quotient is ever guessed. Sequential.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp {

// The inverse of an odd word modulo 2^64.
Word inverse_word(Word odd);

// The longest divisor, in words.
constexpr std::uint64_t longest_divisor = 512;

// x = x / d in place: x has n words, d is odd, has m <= n words with d[m - 1] != 0, and divides x; otherwise
// the result means nothing. Returns the words of the quotient, n - m or n - m + 1 of them; those above are
// left as garbage.
std::uint64_t divide_exact(Word* x, std::uint64_t n, const Word* d, std::uint64_t m);

// inverse[0 .. n) = 1 / d modulo 2^(64 n), for an odd d of m words.
void invert_low_words(Word* inverse, std::uint64_t n, const Word* d, std::uint64_t m);

// x = -x modulo 2^(64 n).
void negate_words(Word* x, std::uint64_t n);

}  // namespace qmp
