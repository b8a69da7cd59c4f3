// The merges of short ranges: products too short for transforms, formed beside their operands and moved into
// place.
//
// A merge that copied its operands first, as one with transforms does, would spend as much time on moving
// words and descriptions of numbers as on multiplying. Results, capacity errors and check values are those of
// ExactFloat::set_mul, add_in_place and subtract_in_place.
#pragma once

#include <cstdint>

#include "numbers/exact_float.h"

namespace qmp {

// Products up to this many words are formed here. Longer than the shortest product that a single
// multiplication transforms, at 59 words, although transforms would be shared: at 80 words the merges of
// Chudnovsky's series take 4 % longer with transforms, at 100 the same.
constexpr std::uint64_t longest_short_product = 80;

// Whether a product of la words by lb words may be formed here.
inline bool is_short_product(std::uint64_t la, std::uint64_t lb) {
    return la + lb <= longest_short_product;
}

// destination = a b. Neither operand lies in the destination's buffer.
void set_short_product(ExactFloat& destination, const ExactFloat& a, const ExactFloat& b);
// a = a b. b may lie in a's buffer.
void multiply_short_in_place(ExactFloat& a, const ExactFloat& b);
// a = a b + c or a b - c. b may lie in a's buffer, c may not.
void multiply_short_and_add(ExactFloat& a, const ExactFloat& b, const ExactFloat& c, bool subtract);

}  // namespace qmp
