// Exact unsigned floats: a word array times a power of 2^64, with a check value modulo 2^61 - 1.
//
// Never zero as a result, never truncated, no sign. Buffers belong to the caller; capacity errors are
// BufferTooSmallException in the operation's name.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "multiply/word.h"

namespace qmp {

// A product whose length La + Lb is below this many words is done by the schoolbook basecase.
constexpr std::uint64_t exact_float_basecase_length = 20;

struct ExactFloatView {
    const Word* T;
    std::uint64_t L;
    std::int64_t exp;
    std::uint64_t hash;

    std::int64_t top() const { return exp + static_cast<std::int64_t>(L); }
};

// Value = sum of T[i] * 2^(64 (exp + i)).
class ExactFloat {
  public:
    Word* T = nullptr;  // may lie above base
    std::uint64_t L = 0;
    std::int64_t exp = 0;
    std::uint64_t hash = 0;
    Word* base = nullptr;
    std::uint64_t AL = 0;  // capacity in words, counted from base

    ExactFloat() = default;
    ExactFloat(Word* buffer, std::uint64_t capacity) : T(buffer), base(buffer), AL(capacity) {}

    operator ExactFloatView() const { return {T, L, exp, hash}; }
    std::int64_t top() const { return exp + static_cast<std::int64_t>(L); }

    // w != 0, else UnsupportedZeroException.
    void set_uW(Word w);
    void set_ExactFloat(ExactFloatView source);
    // Multiplies by 2^k in place.
    void mp2(std::int64_t k);
    // The exact sum; capacity needed: the sum's length + 1.
    void set_add(ParallelContext parallel, ExactFloatView a, ExactFloatView b);
    // The view must lie inside this number, with room for a sentinel word above it.
    ExactFloat& operator-=(ExactFloatView view);
    // Full product; capacity needed: La + Lb. The destination overlaps neither operand.
    void set_mul(const MultiplyContext& context, ExactFloatView a, ExactFloatView b);
    // Advances T over low zero words, in multiples of 8 words, raising exp.
    void strip_low_zero_words();
};

}  // namespace qmp
