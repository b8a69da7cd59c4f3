// Truncating products of BigFloats.
#include <algorithm>

#include "errors/check.h"
#include "multiply/multiply.h"
#include "numbers/basecase_product.h"
#include "numbers/big_float.h"
#include "numbers/big_float_window.h"

namespace qmp {
namespace {

// A product of operands below this many words is done by the basecase when it is wanted whole.
constexpr std::uint64_t basecase_operand_length = 10;
constexpr std::uint64_t basecase_square_length = 20;

using UpperProduct = void (*)(const MultiplyContext&, Word*, std::uint64_t, std::uint64_t, const Word*,
                              std::uint64_t, const Word*, std::uint64_t);

void set_product(BigFloat& destination, UpperProduct upper_product, const MultiplyContext& context,
                 BigFloatView a, BigFloatView b, std::uint64_t p) {
    if (a.is_zero() || b.is_zero()) {
        destination.set_zero();
        return;
    }
    a = a.cut(kept_words(p, a.L));
    b = b.cut(kept_words(p, b.L));
    const std::uint64_t n = a.L + b.L;
    const std::uint64_t m = kept_words(p, n);
    require_capacity("BigFloat::set_mul()", destination.AL, m);

    destination.T = destination.base;
    if (n == m && std::min(a.L, b.L) < basecase_operand_length) {
        basecase_product(destination.T, a.T, a.L, b.T, b.L);
    } else {
        upper_product(context, destination.T, n - m, n, a.T, a.L, b.T, b.L);
    }
    destination.L = m;
    destination.exp = static_cast<std::int64_t>(n - m) + a.exp + b.exp;
    destination.sign = a.sign == b.sign ? 1 : 0;
    // The top word of a full product may be zero, and lost carries may leave one more zero below it.
    strip_top_zeros(destination);
}

}  // namespace

void BigFloat::set_mul(const MultiplyContext& context, BigFloatView a, BigFloatView b, std::uint64_t p) {
    set_product(*this, multiply_upper, context, a, b, p);
}

void BigFloat::set_mul_halved(const MultiplyContext& context, BigFloatView a, BigFloatView b,
                              std::uint64_t p) {
    set_product(*this, multiply_upper_halved, context, a, b, p);
}

void BigFloat::set_sqr(const MultiplyContext& context, BigFloatView a, std::uint64_t p) {
    if (a.is_zero()) {
        set_zero();
        return;
    }
    a = a.cut(kept_words(p, a.L));
    const std::uint64_t n = 2 * a.L;
    const std::uint64_t m = kept_words(p, n);
    require_capacity("BigFloat::set_sqr()", AL, m);

    T = base;
    if (n < basecase_square_length && n == m) {
        basecase_product(T, a.T, a.L, a.T, a.L);
    } else {
        square_upper(context, T, n - m, n, a.T, a.L);
    }
    L = m;
    exp = static_cast<std::int64_t>(n - m) + 2 * a.exp;
    sign = 1;
    strip_top_zeros(*this);
}

}  // namespace qmp
