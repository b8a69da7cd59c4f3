// Check values of leaf ranges: residues modulo 2^61 - 1 that need not be the least ones.
//
// A residue here is below 2^61 + 8, which saves the comparison after every product; check_reduce() makes it
// the least one.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "numbers/check_value.h"

namespace qmp::leaf {

constexpr std::uint64_t residue(Word w) {
    return (w & check_modulus) + (w >> 61);
}

// x < 2^124: the halves at bit 61 then add up to less than 2^64.
constexpr std::uint64_t residue(DoubleWord x) {
    return residue((static_cast<Word>(x) & check_modulus) + static_cast<Word>(x >> 61));
}

constexpr std::uint64_t residue_product(std::uint64_t a, std::uint64_t b) {
    return residue(static_cast<DoubleWord>(a) * b);
}

// a b + c d and a b - c d.
constexpr std::uint64_t residue_sum(std::uint64_t a, std::uint64_t b, std::uint64_t c, std::uint64_t d) {
    return residue(static_cast<DoubleWord>(a) * b + static_cast<DoubleWord>(c) * d);
}
constexpr std::uint64_t residue_difference(std::uint64_t a, std::uint64_t b, std::uint64_t c,
                                           std::uint64_t d) {
    return residue_sum(a, b, 2 * check_modulus - c, d);
}

// The check values of P, Q and R.
struct Residues {
    std::uint64_t P;
    std::uint64_t Q;
    std::uint64_t R;
};

}  // namespace qmp::leaf
