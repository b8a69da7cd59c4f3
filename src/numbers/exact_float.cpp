#include "numbers/exact_float.h"

#include <cstring>

#include "errors/check.h"
#include "errors/exception.h"
#include "multiply/basecase/word_kernels.h"
#include "multiply/multiply.h"
#include "numbers/basecase_product.h"
#include "numbers/check_value.h"

namespace qmp {

void ExactFloat::set_uW(Word w) {
    if (w == 0) throw UnsupportedZeroException("ExactFloat::set_uW()", "Zero was encountered.");
    T = base;
    T[0] = w;
    L = 1;
    exp = 0;
    hash = check_reduce(w);
}

void ExactFloat::set_ExactFloat(ExactFloatView source) {
    require_capacity("ExactFloat::set_ExactFloat()", AL, source.L);
    T = base;
    std::memcpy(T, source.T, source.L * sizeof(Word));
    L = source.L;
    exp = source.exp;
    hash = source.hash;
}

void ExactFloat::mp2(std::int64_t k) {
    const int shift = static_cast<int>(k & 63);
    const std::int64_t words = k >> 6;
    // Only a number whose top bits leave the top word needs room for one word more.
    const bool grows = shift != 0 && (T[L - 1] >> (64 - shift)) != 0;
    require_capacity("ExactFloat::mp2()", AL, static_cast<std::uint64_t>(T - base) + L + grows);

    if (shift != 0) {
        const Word carry = mul_word(T, T, L, Word{1} << shift);
        if (carry != 0) T[L++] = carry;
    }
    exp += words;
    hash = check_mul(hash, check_reduce(Word{1} << shift));
    hash = check_mul(hash, check_word_weight(words));
}

void ExactFloat::set_mul(const MultiplyContext& context, ExactFloatView a, ExactFloatView b) {
    const std::uint64_t n = a.L + b.L;
    require_capacity("ExactFloat::set_mul()", AL, n);
    T = base;
    if (n < exact_float_basecase_length) {
        basecase_product(T, a.T, a.L, b.T, b.L);
    } else {
        multiply(context, T, a.T, a.L, b.T, b.L);
    }
    L = n;
    if (T[L - 1] == 0) --L;
    exp = a.exp + b.exp;
    hash = check_mul(a.hash, b.hash);
}

void ExactFloat::strip_low_zero_words() {
    std::uint64_t zeros = 0;
    while (zeros < L && T[zeros] == 0) ++zeros;
    if (zeros == L) return;
    const std::uint64_t drop = zeros / 8 * 8;
    T += drop;
    L -= drop;
    exp += static_cast<std::int64_t>(drop);
}

}  // namespace qmp
