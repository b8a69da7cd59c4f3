// One or two layers of the transform in registers.
//
// Twiddle(layer, node) gives the factor of a node of the small tree. Forward: "high" inputs with `Reduce`,
// outputs are "low" then, or low inputs without, and outputs are high then; NUMERICS.md has the numbers.
// Inverse: inputs and outputs at most 1.8. All in units of the prime.
#pragma once

#include "multiply/vst/kernels/modular.h"

namespace {

template <typename V, bool Reduce, typename Twiddle>
KERNEL_INLINE void forward_radix(typename V::Real (&x)[2], const Modulus<V>& m, const Twiddle& twiddle) {
    if constexpr (Reduce) x[0] = m.reduce(x[0]);
    m.forward(x[0], x[1], twiddle(0, 0));
}

// The two layers of four parts.
template <typename V, bool Reduce, typename Twiddle>
KERNEL_INLINE void forward_first(typename V::Real (&x)[4], const Modulus<V>& m, const Twiddle& twiddle) {
    if constexpr (Reduce) x[0] = m.reduce(x[0]);
    const Factor<V> w = twiddle(0, 0);
    m.forward(x[0], x[2], w);
    m.forward(x[1], x[3], w);
}
template <typename V, typename Twiddle>
KERNEL_INLINE void forward_second(typename V::Real (&x)[4], const Modulus<V>& m, const Twiddle& twiddle) {
    m.forward(x[0], x[1], twiddle(1, 0));
    m.forward(x[2], x[3], twiddle(1, 1));
}

template <typename V, bool Reduce, typename Twiddle>
KERNEL_INLINE void forward_radix(typename V::Real (&x)[4], const Modulus<V>& m, const Twiddle& twiddle) {
    forward_first<V, Reduce>(x, m, twiddle);
    forward_second(x, m, twiddle);
}

template <typename V, typename Twiddle>
KERNEL_INLINE void inverse_radix(typename V::Real (&x)[2], const Modulus<V>& m, const Twiddle& twiddle) {
    m.inverse_step(x[0], x[1], twiddle(0, 0));
    x[0] = m.reduce(x[0]);
}

template <typename V, typename Twiddle>
KERNEL_INLINE void inverse_first(typename V::Real (&x)[4], const Modulus<V>& m, const Twiddle& twiddle) {
    m.inverse_step(x[0], x[1], twiddle(1, 0));
    m.inverse_step(x[2], x[3], twiddle(1, 1));
}
template <typename V, typename Twiddle>
KERNEL_INLINE void inverse_second(typename V::Real (&x)[4], const Modulus<V>& m, const Twiddle& twiddle) {
    const Factor<V> w = twiddle(0, 0);
    m.inverse_long_step(x[0], x[2], w);
    m.inverse_step(x[1], x[3], w);
    x[0] = m.reduce(x[0]);
}

template <typename V, typename Twiddle>
KERNEL_INLINE void inverse_radix(typename V::Real (&x)[4], const Modulus<V>& m, const Twiddle& twiddle) {
    inverse_first(x, m, twiddle);
    inverse_second(x, m, twiddle);
}

}  // namespace
