// One pass of the transform over a number of equal blocks: every block of `length` complex numbers
// becomes 4 or 8 blocks of a quarter or an eighth of that, in bit-reversed order, multiplied by their
// twiddle factors (forward, decimation in frequency), or the other way round (inverse).
//
// A pass covers the positions [begin, end) of each part of a block, multiples of the vector length. The
// outer loop runs over positions and the inner one over blocks, so that the twiddle factors, which the
// blocks share, are brought into shape once.
//
// Twiddle factors come from the level of the table that belongs to `length` (twiddle_table.h): the groups
// at 4, 8 and 12 doubles hold the powers 2, 1 and 3 of e^(2 pi i p / length). Eight parts need in addition
// the level of half that length, whose groups hold the powers 4, 2 and 6; 5 and 7 are products.
#pragma once

#include <cstdint>

#include "multiply/fft/kernels/butterflies.h"

namespace {

template <typename V>
KERNEL_INLINE Complex<V> twiddle(const double* group) {
    Complex<V> w;
    V::load_twiddle(group, w.re, w.im);
    return w;
}

template <typename V>
KERNEL_INLINE void two_twiddles(const double* groups, Complex<V>& a, Complex<V>& b) {
    V::load_two_twiddles(groups, a.re, a.im, b.re, b.im);
}

// Parts of a block at one position. Of a block whose upper half is empty, the same value everywhere, only
// the lower half is read.
template <typename V, int Parts, bool HalfEmpty>
KERNEL_INLINE void load_parts(Complex<V> (&y)[Parts], const double* x, std::uint64_t part,
                              typename V::Real empty) {
    constexpr int filled = HalfEmpty ? Parts / 2 : Parts;
    KERNEL_UNROLL(8)
    for (int i = 0; i < filled; ++i) y[i] = load_complex<V>(x + static_cast<std::uint64_t>(i) * part);
    KERNEL_UNROLL(8)
    for (int i = filled; i < Parts; ++i) y[i] = {empty, empty};
}

template <typename V, int Parts>
KERNEL_INLINE void store_parts(double* x, std::uint64_t part, const Complex<V> (&y)[Parts]) {
    KERNEL_UNROLL(8)
    for (int i = 0; i < Parts; ++i) store_complex(x + static_cast<std::uint64_t>(i) * part, y[i]);
}

template <typename V, bool Inverse, bool HalfEmpty>
KERNEL_INLINE void pass4_positions(double* data, std::uint64_t length, std::uint64_t blocks,
                                   const double* level, std::uint64_t begin, std::uint64_t end,
                                   typename V::Real empty) {
    const std::uint64_t part = length / 2;  // a quarter of the block, in doubles
    for (std::uint64_t p = begin; p < end; p += V::lanes) {
        const double* groups = level + 8 * p;
        Complex<V> w1, w3;
        const Complex<V> w2 = twiddle<V>(groups + 4);
        two_twiddles(groups + 8, w1, w3);
        double* x = data + 2 * p;
        for (std::uint64_t block = 0; block < blocks; ++block, x += 2 * length) {
            Complex<V> y[4];
            load_parts<V, 4, HalfEmpty>(y, x, part, empty);
            if constexpr (Inverse) {
                y[1] = times_conjugate(y[1], w2);
                y[2] = times_conjugate(y[2], w1);
                y[3] = times_conjugate(y[3], w3);
                inverse_dft4(y[0], y[1], y[2], y[3]);
            } else {
                forward_dft4(y[0], y[1], y[2], y[3]);
                y[1] = y[1] * w2;
                y[2] = y[2] * w1;
                y[3] = y[3] * w3;
            }
            store_parts(x, part, y);
        }
    }
}

template <typename V, bool Inverse, bool HalfEmpty>
KERNEL_INLINE void pass8_positions(double* data, std::uint64_t length, std::uint64_t blocks,
                                   const double* level, const double* half_level, std::uint64_t begin,
                                   std::uint64_t end, typename V::Real empty) {
    const std::uint64_t part = length / 4;  // an eighth of the block, in doubles
    for (std::uint64_t p = begin; p < end; p += V::lanes) {
        Complex<V> w[8];  // in the order of the parts: the powers -, 4, 2, 6, 1, 5, 3, 7
        w[1] = twiddle<V>(half_level + 8 * p + 4);
        two_twiddles(half_level + 8 * p + 8, w[2], w[3]);
        two_twiddles(level + 8 * p + 8, w[4], w[6]);
        w[5] = w[1] * w[4];
        w[7] = w[1] * w[6];
        double* x = data + 2 * p;
        for (std::uint64_t block = 0; block < blocks; ++block, x += 2 * length) {
            Complex<V> y[8];
            load_parts<V, 8, HalfEmpty>(y, x, part, empty);
            if constexpr (Inverse) {
                KERNEL_UNROLL(8)
                for (int i = 1; i < 8; ++i) y[i] = times_conjugate(y[i], w[i]);
                inverse_dft8(y);
            } else {
                forward_dft8(y);
                KERNEL_UNROLL(8)
                for (int i = 1; i < 8; ++i) y[i] = y[i] * w[i];
            }
            store_parts(x, part, y);
        }
    }
}

template <typename V, bool Inverse>
void pass4(double* data, std::uint64_t length, std::uint64_t blocks, const double* level, std::uint64_t begin,
           std::uint64_t end) {
    pass4_positions<V, Inverse, false>(data, length, blocks, level, begin, end, V::set(0.0));
}

template <typename V, bool Inverse>
void pass8(double* data, std::uint64_t length, std::uint64_t blocks, const double* level,
           const double* half_level, std::uint64_t begin, std::uint64_t end) {
    pass8_positions<V, Inverse, false>(data, length, blocks, level, half_level, begin, end, V::set(0.0));
}

// The first pass over a block of which the upper half would be `empty` in all places, and is not read.
template <typename V>
void half_pass4(double* data, std::uint64_t length, const double* level, const double*, std::uint64_t begin,
                std::uint64_t end, double empty) {
    pass4_positions<V, false, true>(data, length, 1, level, begin, end, V::set(empty));
}

template <typename V>
void half_pass8(double* data, std::uint64_t length, const double* level, const double* half_level,
                std::uint64_t begin, std::uint64_t end, double empty) {
    pass8_positions<V, false, true>(data, length, 1, level, half_level, begin, end, V::set(empty));
}

}  // namespace
