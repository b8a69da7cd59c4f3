// Products at the leaves of the transforms.
#pragma once

#include "multiply/ntt32/kernels/residues.h"

namespace {

// c = a b modulo x^M - r, all of it divided by 2^32.
template <typename V, int M>
KERNEL_INLINE void multiply_leaves(typename V::Narrow (&c)[M], const typename V::Narrow (&a)[M],
                                   const typename V::Narrow (&b)[M], FactorVector<V> r,
                                   const Residues<V>& residues) {
    typename V::Narrow wrapped[M]{};
    KERNEL_UNROLL(8)
    for (int j = 1; j < M; ++j) wrapped[j] = residues.mul(b[j], r);
    KERNEL_UNROLL(8)
    for (int s = 0; s < M; ++s) {
        const auto term = [&](int i) KERNEL_INLINE_LAMBDA {
            return V::wide_mul(a[i], i <= s ? b[s - i] : wrapped[s + M - i]);
        };
        // Two products stay below p 2^32, as p < 2^31.
        c[s] = residues.reduce(term(0));
        KERNEL_UNROLL(8)
        for (int i = 1; i < M; i += 2) {
            c[s] = residues.add(c[s], residues.reduce(V::wide_add(term(i), term(i + 1))));
        }
    }
}

// `roots` are those of the forward transform.
template <typename V, int M>
void pointwise(std::uint32_t* a, const std::uint32_t* b, std::uint64_t row_stride, const Roots& roots,
               std::uint64_t begin, std::uint64_t end) {
    const Residues<V> residues(roots.modulus);
    for (std::uint64_t tile = begin; tile < end; ++tile) {
        const auto twist = look_up_vector<V>(roots.twist, tile << V::log_lanes, residues).value;
        for (int v = 0; v < V::lanes; ++v) {
            const std::uint64_t at = (tile << (2 * V::log_lanes)) + static_cast<std::uint64_t>(v * V::lanes);
            typename V::Narrow x[M], y[M], product[M];
            KERNEL_UNROLL(8)
            for (int j = 0; j < M; ++j) {
                x[j] = V::load(a + row_stride * j + at);
                y[j] = V::load(b + row_stride * j + at);
            }
            // The leaf is modulo z - r, r = D(X) * +-W(v / 2): its place among the L-th roots of unity.
            const std::uint32_t root = roots.split.low[v / 2];
            const auto leaf =
                M == 1 ? twist : residues.mul(twist, V::set(v % 2 == 0 ? root : roots.modulus.prime - root));
            multiply_leaves<V, M>(product, x, y, residues.multiplier(leaf), residues);
            KERNEL_UNROLL(8)
            for (int j = 0; j < M; ++j) V::store(a + row_stride * j + at, product[j]);
        }
    }
}

}  // namespace
