// Arithmetic modulo a prime between 2^62 and 2^63 on vectors of words. Residues are below p.
#pragma once

#include "multiply/ntt64/kernels/kernels.h"

namespace {

template <typename V>
struct Factor {
    using Words = typename V::Words;
    Words value, quotient;

    KERNEL_INLINE explicit Factor(const qmp::ntt64::Twiddle& twiddle)
        : value(V::set(twiddle.value)), quotient(V::set(twiddle.quotient)) {}
};

// Wrapped differences are larger than any residue, so that a minimum picks the reduced value.
template <typename V>
class Modular {
  public:
    using Words = typename V::Words;

    KERNEL_INLINE explicit Modular(const qmp::ntt64::Roots& roots)
        : prime_(V::set(roots.prime)), inverse_(V::set(roots.inverse)) {}

    KERNEL_INLINE Words add(Words a, Words b) const { return reduced(V::add(a, b)); }
    KERNEL_INLINE Words sub(Words a, Words b) const { return raised(V::sub(a, b)); }
    // a * c for any word a: with q = floor(a * quotient / 2^64), a * c - q * p is in [0, 2p).
    KERNEL_INLINE Words mul(Words a, const Factor<V>& c) const {
        const Words q = V::mul_high(a, c.quotient);
        return reduced(V::sub(V::mul_low(a, c.value), V::mul_low(q, prime_)));
    }
    // a * b / 2^64, both residues: a * b - m * p with m = a * b / p modulo 2^64 is a multiple of 2^64 above
    // -2^64 p.
    KERNEL_INLINE Words mul_reduced(Words a, Words b) const {
        const Words m = V::mul_low(V::mul_low(a, b), inverse_);
        return raised(V::sub(V::mul_high(a, b), V::mul_high(m, prime_)));
    }
    // Any word, less than 4p.
    KERNEL_INLINE Words residue(Words a) const {
        const Words half = V::min(a, V::sub(a, V::add(prime_, prime_)));
        return reduced(half);
    }

  private:
    KERNEL_INLINE Words reduced(Words a) const { return V::min(a, V::sub(a, prime_)); }
    KERNEL_INLINE Words raised(Words a) const { return V::min(a, V::add(a, prime_)); }

    Words prime_, inverse_;
};

}  // namespace
