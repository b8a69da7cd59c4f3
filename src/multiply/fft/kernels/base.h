// The innermost part of the transform: blocks of R * lanes complex numbers, one row of `lanes` blocks at a
// time.
//
// Forwards each block is first cut by R (its vectors are the R parts, its lanes the positions), then the
// vectors of the same part of all blocks of the row are transposed, so that a lane holds a block, and
// transformed across registers. They stay transposed: the vector that stands in block t of the row, part
// s, holds in lane l the frequency rev(t) of part s of block l.
//
// `roots` holds for each part s = 1 .. R - 1 the vector of e^(2 pi i s p / (R * lanes)), p = lane.
#pragma once

#include <cstdint>

#include "multiply/fft/kernels/butterflies.h"

namespace {

template <typename V, int R, bool Inverse>
KERNEL_INLINE void base_split(double* block, const double* roots) {
    constexpr int group = 2 * V::lanes;
    Complex<V> x[R];
    KERNEL_UNROLL(8)
    for (int s = 0; s < R; ++s) x[s] = load_complex<V>(block + s * group);
    if constexpr (Inverse) {
        KERNEL_UNROLL(8)
        for (int s = 1; s < R; ++s) x[s] = times_conjugate(x[s], load_complex<V>(roots + (s - 1) * group));
    }
    dft_odd<R, Inverse>(x);
    if constexpr (!Inverse) {
        KERNEL_UNROLL(8)
        for (int s = 1; s < R; ++s) x[s] = x[s] * load_complex<V>(roots + (s - 1) * group);
    }
    KERNEL_UNROLL(8)
    for (int s = 0; s < R; ++s) store_complex(block + s * group, x[s]);
}

// The lanes-by-lanes square of the vectors of one part.
template <typename V, int R, bool Inverse>
KERNEL_INLINE void base_square(double* part) {
    constexpr int lanes = V::lanes;
    constexpr int stride = 2 * lanes * R;
    typename V::Real re[lanes], im[lanes];
    Complex<V> x[lanes];
    KERNEL_UNROLL(8)
    for (int i = 0; i < lanes; ++i) {
        re[i] = V::load(part + i * stride);
        im[i] = V::load(part + i * stride + lanes);
    }
    if constexpr (!Inverse) {
        V::transpose(re);
        V::transpose(im);
    }
    KERNEL_UNROLL(8)
    for (int i = 0; i < lanes; ++i) x[i] = {re[i], im[i]};
    dft_lanes<Inverse, V>(x);
    KERNEL_UNROLL(8)
    for (int i = 0; i < lanes; ++i) re[i] = x[i].re, im[i] = x[i].im;
    if constexpr (Inverse) {
        V::transpose(re);
        V::transpose(im);
    }
    KERNEL_UNROLL(8)
    for (int i = 0; i < lanes; ++i) {
        V::store(part + i * stride, re[i]);
        V::store(part + i * stride + lanes, im[i]);
    }
}

template <typename V, int R, bool Inverse>
void base_rows(double* data, const double* roots, std::uint64_t begin, std::uint64_t end) {
    constexpr int block = 2 * V::lanes * R;
    for (std::uint64_t row = begin; row < end; ++row) {
        double* x = data + row * (block * V::lanes);
        if constexpr (R > 1 && !Inverse) {
            for (int i = 0; i < V::lanes; ++i) base_split<V, R, false>(x + i * block, roots);
        }
        for (int s = 0; s < R; ++s) base_square<V, R, Inverse>(x + s * 2 * V::lanes);
        if constexpr (R > 1 && Inverse) {
            for (int i = 0; i < V::lanes; ++i) base_split<V, R, true>(x + i * block, roots);
        }
    }
}

}  // namespace
