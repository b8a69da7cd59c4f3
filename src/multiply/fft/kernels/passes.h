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

template <typename V, bool Inverse>
void pass4(double* data, std::uint64_t length, std::uint64_t blocks, const double* level, std::uint64_t begin,
           std::uint64_t end) {
    const std::uint64_t part = length / 2;  // a quarter of the block, in doubles
    for (std::uint64_t p = begin; p < end; p += V::lanes) {
        const double* groups = level + 8 * p;
        Complex<V> w1, w3;
        const Complex<V> w2 = twiddle<V>(groups + 4);
        two_twiddles(groups + 8, w1, w3);
        double* x = data + 2 * p;
        for (std::uint64_t block = 0; block < blocks; ++block, x += 2 * length) {
            Complex<V> a = load_complex<V>(x), b = load_complex<V>(x + part);
            Complex<V> c = load_complex<V>(x + 2 * part), d = load_complex<V>(x + 3 * part);
            if constexpr (Inverse) {
                b = times_conjugate(b, w2);
                c = times_conjugate(c, w1);
                d = times_conjugate(d, w3);
                inverse_dft4(a, b, c, d);
            } else {
                forward_dft4(a, b, c, d);
                b = b * w2;
                c = c * w1;
                d = d * w3;
            }
            store_complex(x, a);
            store_complex(x + part, b);
            store_complex(x + 2 * part, c);
            store_complex(x + 3 * part, d);
        }
    }
}

template <typename V, bool Inverse>
void pass8(double* data, std::uint64_t length, std::uint64_t blocks, const double* level,
           const double* half_level, std::uint64_t begin, std::uint64_t end) {
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
            KERNEL_UNROLL(8)
            for (int i = 0; i < 8; ++i) y[i] = load_complex<V>(x + i * part);
            if constexpr (Inverse) {
                KERNEL_UNROLL(8)
                for (int i = 1; i < 8; ++i) y[i] = times_conjugate(y[i], w[i]);
                inverse_dft8(y);
            } else {
                forward_dft8(y);
                KERNEL_UNROLL(8)
                for (int i = 1; i < 8; ++i) y[i] = y[i] * w[i];
            }
            KERNEL_UNROLL(8)
            for (int i = 0; i < 8; ++i) store_complex(x + i * part, y[i]);
        }
    }
}

}  // namespace
