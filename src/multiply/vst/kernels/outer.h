// The first step of transforms of m * 2^e points, m = 3, 5, 7: m blocks x(i) become the m blocks
// y(j) = sum over i of x(i) z^(i j), z an m-th root of unity, or for the negacyclic form of (-1)^i x(i) z^(i
// j).
#pragma once

#include "multiply/vst/kernels/layers.h"

namespace {

template <typename V, int M>
struct OuterStep {
    using Real = typename V::Real;
    static constexpr int half = (M - 1) / 2;
    Modulus<V> m;
    Factor<V> sums[half];         // (z^k + z^-k) / 2
    Factor<V> differences[half];  // (z^k - z^-k) / 2

    OuterStep(const qmp::vst::OuterFactors& factors, const qmp::vst::PrimeModulus& modulus)
        : m(modulus_of<V>(modulus)) {
        for (int k = 0; k < half; ++k) {
            sums[k] = {V::set(factors.sums[k]), V::set(factors.sum_quotients[k])};
            differences[k] = {V::set(factors.differences[k]), V::set(factors.difference_quotients[k])};
        }
    }

    // x(j) becomes the sum of x(i) z^(i j), or of x(i) z^(-i j). The exponents k j modulo m fold to 1 ..
    // half; a difference changes its sign on the way.
    template <bool Inverse>
    KERNEL_INLINE void transform(Real (&x)[M]) const {
        Real s[half], d[half];
        for (int k = 1; k <= half; ++k) {
            s[k - 1] = V::add(x[k], x[M - k]);
            d[k - 1] = V::sub(x[k], x[M - k]);
        }
        const Real first = x[0];
        for (int k = 0; k < half; ++k) x[0] = V::add(x[0], s[k]);
        if constexpr (!Inverse && M > 3) x[0] = m.reduce(x[0]);
        for (int j = 1; j <= half; ++j) {
            Real even = first, odd = V::set(0);
            for (int k = 1; k <= half; ++k) {
                const int e = j * k % M;
                const int folded = e <= half ? e : M - e;
                even = V::add(even, m.multiply(s[k - 1], sums[folded - 1]));
                const Real t = m.multiply(d[k - 1], differences[folded - 1]);
                odd = (e <= half) ? V::add(odd, t) : V::sub(odd, t);
            }
            if constexpr (!Inverse && M > 5) even = m.reduce(even);
            x[Inverse ? M - j : j] = V::add(even, odd);
            x[Inverse ? j : M - j] = V::sub(even, odd);
        }
    }
};

template <typename Real, int M, typename V>
KERNEL_INLINE void change_odd_signs(Real (&x)[M]) {
    for (int i = 1; i < M; i += 2) x[i] = V::sub(V::set(0), x[i]);
}

template <typename V, int M>
void forward_outer(double* data, std::uint64_t block, const qmp::vst::OuterFactors& factors, bool negacyclic,
                   const qmp::vst::PrimeModulus& modulus) {
    const OuterStep<V, M> step(factors, modulus);
    for (std::uint64_t i = 0; i < block; i += V::lanes) {
        typename V::Real x[M];
        for (std::uint64_t k = 0; k < M; ++k) x[k] = V::load(data + k * block + i);
        if (negacyclic) change_odd_signs<typename V::Real, M, V>(x);
        step.template transform<false>(x);
        for (std::uint64_t k = 0; k < M; ++k) V::store(data + k * block + i, x[k]);
    }
}

template <typename V, int M>
void inverse_outer(double* data, std::uint64_t block, const qmp::vst::OuterFactors& factors, bool negacyclic,
                   const qmp::vst::PrimeModulus& modulus) {
    const OuterStep<V, M> step(factors, modulus);
    for (std::uint64_t i = 0; i < block; i += V::lanes) {
        typename V::Real x[M];
        for (std::uint64_t k = 0; k < M; ++k) x[k] = V::load(data + k * block + i);
        if constexpr (M > 3) {
            for (auto& value : x) value = step.m.reduce(value);
        }
        step.template transform<true>(x);
        if (negacyclic) change_odd_signs<typename V::Real, M, V>(x);
        for (std::uint64_t k = 0; k < M; ++k) V::store(data + k * block + i, x[k]);
    }
}

// Multiplier 1 has no such step.
template <typename V>
void no_outer(double*, std::uint64_t, const qmp::vst::OuterFactors&, bool, const qmp::vst::PrimeModulus&) {}

}  // namespace
