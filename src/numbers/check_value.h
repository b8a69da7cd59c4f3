// Arithmetic modulo the Mersenne prime M = 2^61 - 1, in which exact numbers carry their check values.
//
// All values are in [0, M - 1]. 2^64 = 8 (mod M), so a word at position k weighs 8^k; 2^58 is the inverse
// of 8, so a word at position -k weighs (2^58)^k.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp {

constexpr std::uint64_t check_modulus = (std::uint64_t{1} << 61) - 1;

constexpr std::uint64_t check_reduce(Word w) {
    const std::uint64_t sum = (w >> 61) + (w & check_modulus);
    return sum >= check_modulus ? sum - check_modulus : sum;
}
// Reduces any 128-bit value.
constexpr std::uint64_t check_reduce(DoubleWord v) {
    return check_reduce(static_cast<Word>((v >> 61) & check_modulus) + static_cast<Word>(v & check_modulus) +
                        static_cast<Word>(v >> 122));
}
constexpr std::uint64_t check_add(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t sum = a + b;
    return sum >= check_modulus ? sum - check_modulus : sum;
}
constexpr std::uint64_t check_sub(std::uint64_t a, std::uint64_t b) {
    return a >= b ? a - b : a + check_modulus - b;
}
constexpr std::uint64_t check_mul(std::uint64_t a, std::uint64_t b) {
    return check_reduce(static_cast<DoubleWord>(a) * b);
}
// Left-to-right binary exponentiation; exponent 0 gives 1.
std::uint64_t pow_mod(std::uint64_t base, std::uint64_t exponent);
// The weight of word position `position` (8^position, through 2^58 when negative).
std::uint64_t check_word_weight(std::int64_t position);

}  // namespace qmp
