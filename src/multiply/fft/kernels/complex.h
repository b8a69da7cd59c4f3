// Vectors of complex numbers: one vector of real parts, one of imaginary parts.
//
// In memory an array of complex numbers is a sequence of groups of `lanes` numbers, each group the real
// parts followed by the imaginary parts; number e stands in group e / lanes.
#pragma once

#include "multiply/vectors/inline.h"

namespace {

template <typename V>
struct Complex {
    typename V::Real re, im;
};

template <typename V>
KERNEL_INLINE Complex<V> load_complex(const double* group) {
    return {V::load(group), V::load(group + V::lanes)};
}

template <typename V>
KERNEL_INLINE void store_complex(double* group, Complex<V> x) {
    V::store(group, x.re);
    V::store(group + V::lanes, x.im);
}

template <typename V>
KERNEL_INLINE Complex<V> operator+(Complex<V> a, Complex<V> b) {
    return {V::add(a.re, b.re), V::add(a.im, b.im)};
}

template <typename V>
KERNEL_INLINE Complex<V> operator-(Complex<V> a, Complex<V> b) {
    return {V::sub(a.re, b.re), V::sub(a.im, b.im)};
}

// a * b
template <typename V>
KERNEL_INLINE Complex<V> operator*(Complex<V> a, Complex<V> b) {
    return {V::mul_sub(a.re, b.re, V::mul(a.im, b.im)), V::mul_add(a.re, b.im, V::mul(a.im, b.re))};
}

// a * conj(b)
template <typename V>
KERNEL_INLINE Complex<V> times_conjugate(Complex<V> a, Complex<V> b) {
    return {V::mul_add(a.re, b.re, V::mul(a.im, b.im)), V::mul_sub(a.im, b.re, V::mul(a.re, b.im))};
}

// a * b forwards, a * conj(b) on the way back.
template <bool Inverse, typename V>
KERNEL_INLINE Complex<V> turn(Complex<V> a, Complex<V> b) {
    if constexpr (Inverse) {
        return times_conjugate(a, b);
    } else {
        return a * b;
    }
}

// a + i b and a - i b
template <typename V>
KERNEL_INLINE Complex<V> add_i(Complex<V> a, Complex<V> b) {
    return {V::sub(a.re, b.im), V::add(a.im, b.re)};
}

template <typename V>
KERNEL_INLINE Complex<V> sub_i(Complex<V> a, Complex<V> b) {
    return {V::add(a.re, b.im), V::sub(a.im, b.re)};
}

// a + i b forwards, a - i b on the way back; and the other one.
template <bool Inverse, typename V>
KERNEL_INLINE Complex<V> add_turned(Complex<V> a, Complex<V> b) {
    return Inverse ? sub_i(a, b) : add_i(a, b);
}

template <bool Inverse, typename V>
KERNEL_INLINE Complex<V> sub_turned(Complex<V> a, Complex<V> b) {
    return Inverse ? add_i(a, b) : sub_i(a, b);
}

template <typename V>
KERNEL_INLINE Complex<V> conjugate(Complex<V> a) {
    return {a.re, V::sub(V::set(0.0), a.im)};
}

template <typename V>
KERNEL_INLINE Complex<V> reverse_lanes(Complex<V> a) {
    return {V::reverse(a.re), V::reverse(a.im)};
}

}  // namespace
