// The last layers of the transform in registers, for polynomials modulo x^n - 1: the factors are roots of
// unity of small order, the first of every layer 1. n is 2, 4 or 8; x[k] holds coefficient k.
#pragma once

#include "multiply/vst/kernels/modular.h"

namespace {

// The layers' factors other than 1: of order 4, 8 and the third power of that, or their inverses.
template <typename V>
struct UnitRoots {
    Factor<V> fourth, eighth, three_eighths;
};

// (a, b) -> (a + b, a - b)
template <typename V>
KERNEL_INLINE void cross(typename V::Real& a, typename V::Real& b) {
    const typename V::Real difference = V::sub(a, b);
    a = V::add(a, b);
    b = difference;
}

// Down: x[0] at most 0.51, the others at most 0.75; outputs at most 5.8.
template <typename V>
KERNEL_INLINE void unit_forward(typename V::Real (&x)[2], const Modulus<V>&, const UnitRoots<V>&) {
    cross<V>(x[0], x[1]);
}

template <typename V>
KERNEL_INLINE void unit_forward(typename V::Real (&x)[4], const Modulus<V>& m, const UnitRoots<V>& w) {
    cross<V>(x[0], x[2]);
    cross<V>(x[1], x[3]);
    cross<V>(x[0], x[1]);
    m.forward(x[2], x[3], w.fourth);
}

template <typename V>
KERNEL_INLINE void unit_forward(typename V::Real (&x)[8], const Modulus<V>& m, const UnitRoots<V>& w) {
    cross<V>(x[0], x[4]);
    cross<V>(x[1], x[5]);
    cross<V>(x[2], x[6]);
    cross<V>(x[3], x[7]);
    cross<V>(x[0], x[2]);
    cross<V>(x[1], x[3]);
    m.forward(x[4], x[6], w.fourth);
    m.forward(x[5], x[7], w.fourth);
    cross<V>(x[0], x[1]);
    m.forward(x[2], x[3], w.fourth);
    m.forward(x[4], x[5], w.eighth);
    m.forward(x[6], x[7], w.three_eighths);
}

// Back: inputs at most 1.8; x[0] at most 0.51, the others at most 7.2.
template <typename V>
KERNEL_INLINE void unit_inverse(typename V::Real (&x)[2], const Modulus<V>& m, const UnitRoots<V>&) {
    cross<V>(x[0], x[1]);
    x[0] = m.reduce(x[0]);
}

template <typename V>
KERNEL_INLINE void unit_inverse(typename V::Real (&x)[4], const Modulus<V>& m, const UnitRoots<V>& w) {
    cross<V>(x[0], x[1]);
    m.inverse_step(x[2], x[3], w.fourth);
    cross<V>(x[0], x[2]);
    cross<V>(x[1], x[3]);
    x[0] = m.reduce(x[0]);
}

template <typename V>
KERNEL_INLINE void unit_inverse(typename V::Real (&x)[8], const Modulus<V>& m, const UnitRoots<V>& w) {
    cross<V>(x[0], x[1]);
    m.inverse_step(x[2], x[3], w.fourth);
    m.inverse_step(x[4], x[5], w.eighth);
    m.inverse_step(x[6], x[7], w.three_eighths);
    x[0] = m.reduce(x[0]);
    cross<V>(x[0], x[2]);
    cross<V>(x[1], x[3]);
    m.inverse_long_step(x[4], x[6], w.fourth);
    m.inverse_step(x[5], x[7], w.fourth);
    x[4] = m.reduce(x[4]);
    cross<V>(x[0], x[4]);
    cross<V>(x[1], x[5]);
    cross<V>(x[2], x[6]);
    cross<V>(x[3], x[7]);
    x[0] = m.reduce(x[0]);
}

}  // namespace
