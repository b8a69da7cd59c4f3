// Unsigned integers with a check value modulo 2^61 - 1. Buffers belong to the caller.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp {

// A read-only integer: words, length, check value.
struct BasicIntView {
    const Word* T;
    std::uint64_t L;
    std::uint64_t hash;
};

// Value = sum of T[i] * 2^(64 i). After every operation L == 0 or T[L - 1] != 0.
class BasicInt {
  public:
    Word* T = nullptr;
    std::uint64_t L = 0;
    std::uint64_t hash = 0;
    std::uint64_t AL = 0;  // capacity in words

    BasicInt() = default;
    BasicInt(Word* buffer, std::uint64_t capacity) : T(buffer), AL(capacity) {}

    operator BasicIntView() const { return {T, L, hash}; }

    // Capacity needed: L + 1. The view may not be longer than this number.
    BasicInt& operator+=(BasicIntView view);
    // Throws UnsupportedNegativeException or UnsupportedZeroException when the difference is not positive;
    // the words are partly subtracted then. Capacity needed: L + 1.
    BasicInt& operator-=(BasicIntView view);
    // Schoolbook product; capacity needed: the sum of the lengths. Neither operand may overlap this number.
    void set_mulB(BasicIntView a, BasicIntView b);
};

using BasicIntR = BasicInt;

}  // namespace qmp
