// Arithmetic modulo a prime p, 2^49 < p < 2^50, on integers held by doubles, and the butterflies made of it.
//
// Bounds are in units of p; every value stays below 8 in magnitude, so below 2^53, hence exact. A product by
// a table's factor leaves little more than one half (NUMERICS.md has the bounds).
#pragma once

#include "multiply/vectors/inline.h"

namespace {

// A fixed factor w, |w| < 0.5 p, with its quotient w / p to 0.6 units in the last place.
template <typename V>
struct Factor {
    using Real = typename V::Real;
    Real value;
    Real quotient;

    // Member by member: the compiler would copy the bytes in pieces that are not vectors.
    Factor() = default;
    KERNEL_INLINE Factor(Real v, Real q) : value(v), quotient(q) {}
    KERNEL_INLINE Factor(const Factor& other) : value(other.value), quotient(other.quotient) {}
    KERNEL_INLINE Factor& operator=(const Factor& other) {
        value = other.value;
        quotient = other.quotient;
        return *this;
    }
};

// A product by a factor on its way: x * w = high + low exactly, and the multiple of the prime to take off.
template <typename V>
struct Product {
    typename V::Real high, low, quotient;
};

template <typename V>
struct Modulus {
    using Real = typename V::Real;
    Real prime;
    Real inverse;

    KERNEL_INLINE Modulus(Real p, Real i) : prime(p), inverse(i) {}
    KERNEL_INLINE Modulus(const Modulus& other) : prime(other.prime), inverse(other.inverse) {}

    // x * w for |x| <= 4: at most 0.65 with fused operations, and 0.78 without.
    KERNEL_INLINE Real multiply(Real x, const Factor<V>& w) const {
        Product<V> product;
        begin(x, w, product);
        return end(product);
    }
    // The same for |x| < 8: at most 1.3.
    KERNEL_INLINE Real multiply_long(Real x, const Factor<V>& w) const {
        Product<V> product;
        begin_long(x, w, product);
        return end(product);
    }
    // The two halves of them.
    KERNEL_INLINE void begin(Real x, const Factor<V>& w, Product<V>& product) const {
        product.high = V::mul(x, w.value);
        product.low = V::mul_sub(x, w.value, product.high);
        product.quotient = V::rounded_product(x, w.quotient);
    }
    KERNEL_INLINE void begin_long(Real x, const Factor<V>& w, Product<V>& product) const {
        product.high = V::mul(x, w.value);
        product.low = V::mul_sub(x, w.value, product.high);
        product.quotient = V::rounded_long_product(x, w.quotient);
    }
    KERNEL_INLINE Real end(const Product<V>& product) const {
        return V::add(V::neg_mul_add(product.quotient, prime, product.high), product.low);
    }
    // x * y for |x y| <= 2.9: at most 1.75.
    KERNEL_INLINE Real multiply(Real x, Real y) const {
        const Real high = V::mul(x, y);
        const Real low = V::mul_sub(x, y, high);
        const Real quotient = V::rounded_long_product(high, inverse);
        return V::add(V::neg_mul_add(quotient, prime, high), low);
    }
    // At most 0.5 and a little.
    KERNEL_INLINE Real reduce(Real x) const { return remainder(x, quotient(x)); }
    KERNEL_INLINE Real quotient(Real x) const { return V::rounded_product(x, inverse); }
    // |quotient| <= 8: the multiple of the prime is exact by itself.
    KERNEL_INLINE Real remainder(Real x, Real quotient) const {
        if constexpr (requires { V::exact_neg_mul_add(quotient, prime, x); }) {
            return V::exact_neg_mul_add(quotient, prime, x);
        } else {
            return V::neg_mul_add(quotient, prime, x);
        }
    }
    // The table's form of a factor; a second step corrects the quotient.
    KERNEL_INLINE Factor<V> factor(Real w) const {
        const Real estimate = V::mul(w, inverse);
        return {w, V::mul_add(V::neg_mul_add(estimate, prime, w), inverse, estimate)};
    }

    // (low, high) -> (low + w high, low - w high)
    KERNEL_INLINE void forward(Real& low, Real& high, const Factor<V>& w) const {
        const Real t = multiply(high, w);
        high = V::sub(low, t);
        low = V::add(low, t);
    }
    // (low, high) -> (low + high, w (low - high)); the difference at most 4, or less than 8.
    KERNEL_INLINE void inverse_step(Real& low, Real& high, const Factor<V>& w) const {
        const Real t = V::sub(low, high);
        low = V::add(low, high);
        high = multiply(t, w);
    }
    KERNEL_INLINE void inverse_long_step(Real& low, Real& high, const Factor<V>& w) const {
        const Real t = V::sub(low, high);
        low = V::add(low, high);
        high = multiply_long(t, w);
    }
};

}  // namespace
