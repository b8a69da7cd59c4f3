// Fused multiply-add for vector types that have none: the rounding error of the product is computed
// exactly (Dekker's product with Veltkamp's splitting) and added last.
//
// For integers a * b below 2^106 these equal the fused operations wherever the transform relies on them:
//  - the result is exact when c is close to -a * b, so that the exact value is a double: product + c is then
//    exact, and so is the sum with the error. That covers mul_sub(x, w, rounded x * w), neg_mul_add(q, p, h)
//    with a result of a few p, and mul_sub(t, w, d) with d the rounded part of t * w that a sum took in.
//  - in mul_add(t, w, sum), sum a magic number above 32 |t * w| that fixes the unit of the last bit,
//    the result is a multiple of the unit at most 0.52 of it away from the exact value (fused: 1/2). What
//    is left, t * w - (result - sum), is then an exact low part.
#pragma once

#include "multiply/vectors/inline.h"

namespace {

template <typename V>
struct Fused : V {
    using Real = typename V::Real;

    // a * b + c, a * b - c, c - a * b
    static KERNEL_INLINE Real mul_add(Real a, Real b, Real c) {
        const Real product = V::mul(a, b);
        return V::add(V::add(product, c), product_error(a, b, product));
    }
    static KERNEL_INLINE Real mul_sub(Real a, Real b, Real c) {
        const Real product = V::mul(a, b);
        return V::add(V::sub(product, c), product_error(a, b, product));
    }
    static KERNEL_INLINE Real neg_mul_add(Real a, Real b, Real c) {
        const Real product = V::mul(a, b);
        return V::sub(V::sub(c, product), product_error(a, b, product));
    }
    // c - a * b where a * b is exact.
    static KERNEL_INLINE Real exact_neg_mul_add(Real a, Real b, Real c) { return V::sub(c, V::mul(a, b)); }
    // a * b to an integer next to it, |a * b| <= 2^52.
    static KERNEL_INLINE Real rounded_product(Real a, Real b) { return V::round(V::mul(a, b)); }
    static KERNEL_INLINE Real rounded_long_product(Real a, Real b) { return V::round(V::mul(a, b)); }

  private:
    struct Halves {
        Real high, low;  // 26 bits and a sign each
    };
    static KERNEL_INLINE Halves halves(Real x) {
        const Real scaled = V::mul(x, V::set(0x1p27 + 1));
        const Real high = V::sub(scaled, V::sub(scaled, x));
        return {high, V::sub(x, high)};
    }
    // a * b - product, exactly
    static KERNEL_INLINE Real product_error(Real a, Real b, Real product) {
        const Halves x = halves(a);
        const Halves y = halves(b);
        const Real high = V::sub(V::mul(x.high, y.high), product);
        const Real middle = V::add(V::add(high, V::mul(x.high, y.low)), V::mul(x.low, y.high));
        return V::add(middle, V::mul(x.low, y.low));
    }
};

}  // namespace
