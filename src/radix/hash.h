// Hashes of word arrays and digit strings modulo 2^61 - 1: the number that characterises a result
// independently of its radix, H(x, d) = Floor(x 10^d) mod (2^61 - 1).
#pragma once

#include <cstdint>
#include <string_view>

#include "multiply/word.h"
#include "numbers/check_value.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

// From this many words on, an array is hashed in parallel blocks (of at least this many words, at most
// 64 of them).
constexpr std::uint64_t parallel_hash_threshold = 10000;

// radix is the true radix reduced modulo M: 8 for binary words (2^64), or decimal_word_radix.
constexpr std::uint64_t binary_word_radix = 8;
constexpr std::uint64_t decimal_word_radix = check_reduce(Word{10000000000000000000u});

// Horner evaluation from the most significant word down, starting from h0. Empty arrays return h0.
std::uint64_t hash_words(std::uint64_t h0, std::uint64_t radix, const Word* words, std::uint64_t n);
std::uint64_t hash_words(ParallelContext parallel, std::uint64_t h0, std::uint64_t radix, const Word* words,
                         std::uint64_t n);
// Digit characters: h = h 10 + digit, starting from h0.
std::uint64_t hash_digits(std::uint64_t h0, std::string_view digits);

}  // namespace qmp
