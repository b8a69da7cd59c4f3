// Conversions into a BigFloat and its operations with one word.
#include <bit>

#include "console/console.h"
#include "errors/check.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/big_float.h"
#include "numbers/big_float_window.h"
#include "numbers/parallel_copy.h"
#include "numbers/word_multiply.h"

namespace qmp {

void BigFloat::set_zero() {
    T = base;
    L = 0;
    exp = 0;
    sign = 1;
}

void BigFloat::set_BigFloat(ParallelContext parallel, BigFloatView source, std::uint64_t p) {
    if (source.is_zero()) {
        set_zero();
        return;
    }
    const BigFloatView kept = source.cut(kept_words(p, source.L));
    require_capacity("BigFloat::set_BigFloat()", AL, kept.L);
    T = base;
    parallel_copy(parallel, T, kept.T, kept.L);
    L = kept.L;
    exp = kept.exp;
    sign = kept.sign;
}

void BigFloat::set_double(double x, std::int64_t e) {
    if (x == 0.0) {
        set_zero();
        return;
    }
    require_capacity("BigFloat::set_double()", AL, 1);

    constexpr Word hidden_bit = Word{1} << 52;
    const auto bits = std::bit_cast<std::uint64_t>(x);
    Word mantissa = bits & (hidden_bit - 1);
    auto biased = static_cast<std::int64_t>((bits >> 52) & 0x7ff);
    if (biased != 0) {
        mantissa |= hidden_bit;
    } else {
        biased = 1;  // subnormal
    }

    T = base;
    T[0] = mantissa;
    L = 1;
    sign = (bits >> 63) == 0 ? 1 : 0;
    const std::int64_t shift = biased - 1075;  // bias 1023, 52 fraction bits
    exp = e + (shift >> 6);
    if ((shift & 63) != 0) mul_uW(ParallelContext::sequential(), Word{1} << (shift & 63));
}

void BigFloat::mul_uW(ParallelContext parallel, Word w) {
    if (L == 0 || w == 1) return;
    if (w == 0) {
        set_zero();
        return;
    }
    require_capacity("BigFloat::mul_uW()", AL, static_cast<std::uint64_t>(T - base) + L + 1);
    const Word carry = multiply_by_word(parallel, T, T, L, w);
    T[L] = carry;
    if (carry != 0) ++L;
}

void BigFloat::set_mul_uW(ParallelContext parallel, BigFloatView a, Word w) {
    require_capacity("BigFloat::set_mul_uW()", AL, a.L + 1);
    if (a.is_zero() || w == 0) {
        set_zero();
        return;
    }
    T = base;
    L = a.L;
    exp = a.exp;
    sign = a.sign;
    const Word carry = multiply_by_word(parallel, T, a.T, a.L, w);
    T[L] = carry;
    if (carry != 0) ++L;
}

void BigFloat::add_ip(Word w, std::int64_t k) {
    if (L == 0 || k < exp || k > top())
        console::fatal_error("BigFloat::add_ip(): Magnitude is out of range.");
    require_capacity("BigFloat::add_ip()", AL, static_cast<std::uint64_t>(T - base) + L + 1);
    T[L] = 0;
    const auto index = static_cast<std::uint64_t>(k - exp);
    T[index] += w;
    add_carry(T + index + 1, L - index, T[index] < w);
    if (T[L] != 0) ++L;
}

}  // namespace qmp
