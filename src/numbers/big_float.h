// Signed floats that truncate: a word array times a power of 2^64, with a working precision per operation.
//
// p is a precision in words. A result keeps at most p + 2 words ("Extra Precision"); words below are
// dropped, never rounded. Every setter starts at the buffer's beginning (T = base). Buffers belong to the
// caller; capacity errors are BufferTooSmallException in the operation's name.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "multiply/word.h"

namespace qmp {

constexpr std::uint64_t big_float_extra_precision = 2;
// Block of the staged addition and subtraction, in words.
constexpr std::uint64_t big_float_addition_buffer = 128;

struct BigFloatView {
    const Word* T;
    std::uint64_t L;
    std::int64_t exp;
    std::uint8_t sign;  // 1 for positive and for zero, 0 for negative

    bool is_zero() const { return L == 0; }
    std::int64_t top() const { return exp + static_cast<std::int64_t>(L); }
    // The top `words` words only.
    BigFloatView cut(std::uint64_t words) const {
        if (L <= words) return *this;
        const std::uint64_t drop = L - words;
        return {T + drop, words, exp + static_cast<std::int64_t>(drop), sign};
    }
};

// Value = +-sum of T[i] * 2^(64 (exp + i)). Zero is L = 0, sign = 1. Otherwise T[L - 1] != 0.
class BigFloat {
  public:
    Word* T = nullptr;
    std::uint64_t L = 0;
    std::int64_t exp = 0;
    std::uint8_t sign = 1;
    Word* base = nullptr;
    std::uint64_t AL = 0;  // capacity in words, counted from base

    BigFloat() = default;
    BigFloat(Word* buffer, std::uint64_t capacity) : T(buffer), base(buffer), AL(capacity) {}

    operator BigFloatView() const { return {T, L, exp, sign}; }
    BigFloatView view() const { return *this; }
    bool is_zero() const { return L == 0; }
    std::int64_t top() const { return exp + static_cast<std::int64_t>(L); }
    void set_zero();

    void set_BigFloat(ParallelContext parallel, BigFloatView source, std::uint64_t p);
    // x * 2^(64 e).
    void set_double(double x, std::int64_t e);
    void mul_uW(ParallelContext parallel, Word w);
    // A product with one word, written to this number; it may not overlap a.
    void set_mul_uW(ParallelContext parallel, BigFloatView a, Word w);
    // Adds the word w at absolute word position k; exp <= k <= exp + L. Fatal when out of that range.
    void add_ip(Word w, std::int64_t k);

    // Magnitudes: |a| + |b|, and |a| - |b| for |a| >= |b|; the sign becomes 1. With one operand zero they
    // copy the other, its sign included, except that 0 - |b| is a zero with sign 0. The words from
    // p + 1 below the higher top on are kept. The destination overlaps no operand, here and below.
    void set_uadd(ParallelContext parallel, BigFloatView a, BigFloatView b, std::uint64_t p);
    void set_usub(ParallelContext parallel, BigFloatView a, BigFloatView b, std::uint64_t p);
    void set_add(ParallelContext parallel, BigFloatView a, BigFloatView b, std::uint64_t p);
    void set_sub(ParallelContext parallel, BigFloatView a, BigFloatView b, std::uint64_t p);
    // a - b over the window of p + 1 words that ends at word position `top`; the caller knows the sign.
    void set_rsub(BigFloatView a, BigFloatView b, std::int64_t top, std::uint64_t p, std::uint8_t sign);

    void set_mul(const MultiplyContext& context, BigFloatView a, BigFloatView b, std::uint64_t p);
    // The same through transforms of half the length, where the algorithm has them.
    void set_mul_halved(const MultiplyContext& context, BigFloatView a, BigFloatView b, std::uint64_t p);
    void set_sqr(const MultiplyContext& context, BigFloatView a, std::uint64_t p);

    // Fatal when the top word of a non-zero number is zero.
    void check_normalization() const;
    // Drops top words of all ones, then top zero words.
    void strip_l1s();
    // The same, then the two's complement of what is left.
    void negate_l1s();
    // Keeps only the part below word position k.
    void truncate_above(std::int64_t k);
    // Adds one unit in the last kept word.
    void add_ulp();
    // Drops low words until at most `words` are left (T advances, exp rises).
    void truncate_to(std::uint64_t words);
};

using BigFloatR = BigFloat;

// Compares magnitudes: -1, 0 or +1.
int ucmp(BigFloatView a, BigFloatView b);

}  // namespace qmp
