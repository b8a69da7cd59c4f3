// The product of two transforms of real sequences that were packed as even + i * odd.
//
// With A, B the transforms at frequency k, A', B' those at -k, and w = e^(2 pi i k / length), the
// transform of the packed cyclic product is
//     C  = A * B - T          where T = (1 + w) / 4 * (A - conj A') * (B - conj B')
//     C' = A' * B' - conj T
// (the odd parts' product carries one more step of the sequence than the even parts' product; T puts
// that right). Frequencies k and -k stand in rows h and h' that are mirror images within their range
// [2^q, 2^(q+1)), with lanes, parts and vectors mirrored as well: row h, part s, vector t, lane l meets
// row h', part R - 1 - s, vector lanes - 1 - t, lane lanes - 1 - l. Row 1 is its own mirror image. Row 0
// has ranges within its lanes, and its lane 0 holds the block of the multiples of the number of blocks.
#pragma once

#include <cstdint>

#include "multiply/fft/kernels/butterflies.h"

namespace {

// `base_turns`: for each part s the vector of e^(2 pi i (rev(l) / (R lanes^2) + s / (R lanes))) / 4.
template <typename V, int R>
class PointwiseRow {
  public:
    static constexpr int lanes = V::lanes;
    static constexpr std::uint64_t doubles = std::uint64_t{2} * R * lanes * lanes;

    static KERNEL_INLINE std::uint64_t offset(int s, int t) {
        return static_cast<std::uint64_t>(t * R + s) * (2 * lanes);
    }

    // (1 + w) / 4 of vector t, from w / 4 of vector 0.
    static KERNEL_INLINE Complex<V> weight(Complex<V> turn, int t) {
        const auto h = V::set(sqrt_half), quarter = V::set(0.25);
        Complex<V> w = turn;
        if (t & 4) w = {V::mul(V::sub(w.re, w.im), h), V::mul(V::add(w.re, w.im), h)};
        if (t & 2) {
            w = (t & 1) ? Complex<V>{V::add(quarter, w.im), V::sub(V::set(0.0), w.re)}
                        : Complex<V>{V::sub(quarter, w.im), w.re};
        } else {
            w = (t & 1) ? Complex<V>{V::sub(quarter, w.re), V::sub(V::set(0.0), w.im)}
                        : Complex<V>{V::add(quarter, w.re), w.im};
        }
        return w;
    }

    // a - conj(b)
    static KERNEL_INLINE Complex<V> less_conjugate(Complex<V> a, Complex<V> b) {
        return {V::sub(a.re, b.re), V::add(a.im, b.im)};
    }

    static KERNEL_INLINE Complex<V> correction(Complex<V> w, Complex<V> a, Complex<V> a_mirror, Complex<V> b,
                                            Complex<V> b_mirror) {
        return w * (less_conjugate(a, a_mirror) * less_conjugate(b, b_mirror));
    }

    // The vectors (s, t) of a row and their mirror images, in place.
    template <bool Square>
    static KERNEL_INLINE void pair(double* a, double* a_mirror, const double* b, const double* b_mirror,
                                Complex<V> w) {
        const Complex<V> x = load_complex<V>(a), x_mirror = reverse_lanes(load_complex<V>(a_mirror));
        const Complex<V> y = Square ? x : load_complex<V>(b);
        const Complex<V> y_mirror = Square ? x_mirror : reverse_lanes(load_complex<V>(b_mirror));
        const Complex<V> t = correction(w, x, x_mirror, y, y_mirror);
        store_complex(a, x * y - t);
        const Complex<V> c = x_mirror * y_mirror;
        store_complex(a_mirror, reverse_lanes(Complex<V>{V::sub(c.re, t.re), V::add(c.im, t.im)}));
    }

    // Rows h < mirror, or h == mirror == 1; `turn` is the row's own e^(2 pi i rev(h) / length).
    template <bool Square>
    static KERNEL_INLINE void pair_rows(double* a, const double* b, std::uint64_t h, std::uint64_t mirror,
                                     const double* base_turns, Complex<V> turn) {
        double* a_row = a + h * doubles;
        double* a_mirror = a + mirror * doubles;
        const double* b_row = b + h * doubles;
        const double* b_mirror = b + mirror * doubles;
        const int vectors = h == mirror ? lanes / 2 : lanes;
        for (int s = 0; s < R; ++s) {
            const Complex<V> part_turn = turn * load_complex<V>(base_turns + s * 2 * lanes);
            KERNEL_UNROLL(8)
            for (int t = 0; t < lanes; ++t) {
                if (t >= vectors) break;
                const std::uint64_t here = offset(s, t), there = offset(R - 1 - s, lanes - 1 - t);
                pair<Square>(a_row + here, a_mirror + there, b_row + here, b_mirror + there,
                             weight(part_turn, t));
            }
        }
    }

    // Row 0. Every frequency is computed on its own, from a copy of the row.
    template <bool Square>
    static void first_row(double* a, const double* b, const double* base_turns) {
        alignas(64) double copy[doubles];
        for (std::uint64_t i = 0; i < doubles; i += lanes) V::store(copy + i, V::load(a + i));
        const double* other = Square ? copy : b;
        for (int s = 0; s < R; ++s) {
            const Complex<V> turn = load_complex<V>(base_turns + s * 2 * lanes);
            KERNEL_UNROLL(8)
            for (int t = 0; t < lanes; ++t) {
                const std::uint64_t mirror = offset(R - 1 - s, lanes - 1 - t);
                const std::uint64_t first =
                    s == 0 ? offset(0, mirror_in_range(t)) : offset(R - s, lanes - 1 - t);
                const Complex<V> x = load_complex<V>(copy + offset(s, t));
                const Complex<V> y = load_complex<V>(other + offset(s, t));
                const Complex<V> c = correction(weight(turn, t), x, mirrored(copy, mirror, first), y,
                                                mirrored(other, mirror, first));
                store_complex(a + offset(s, t), x * y - c);
            }
        }
    }

  private:
    static constexpr int mirror_in_range(int t) {
        return t == 0 ? 0 : t == 1 ? 1 : t < 4 ? 5 - t : 11 - t;
    }

    static KERNEL_INLINE Complex<V> mirrored(const double* row, std::uint64_t offset_mirror,
                                          std::uint64_t offset_first) {
        const Complex<V> x = load_complex<V>(row + offset_mirror),
                         first = load_complex<V>(row + offset_first);
        return {V::replace_first(V::reverse_ranges(x.re), first.re),
                V::replace_first(V::reverse_ranges(x.im), first.im)};
    }
};

// The low `count` bits of x (1 <= count <= 64) in reversed order; the others are zero.
inline std::uint64_t reversed_bits(std::uint64_t x, int count) {
    x = ((x >> 1) & 0x5555555555555555) | ((x & 0x5555555555555555) << 1);
    x = ((x >> 2) & 0x3333333333333333) | ((x & 0x3333333333333333) << 2);
    x = ((x >> 4) & 0x0f0f0f0f0f0f0f0f) | ((x & 0x0f0f0f0f0f0f0f0f) << 4);
    return __builtin_bswap64(x) >> (64 - count);
}

// Pairs [begin, end) of the rows: pair 0 is rows 0 and 1, pair m (2^(q-1) <= m < 2^q) the rows m + 2^(q-1)
// and its mirror image. `level` is the table level of the whole transform, whose group of the first power
// holds the rows' turns; `log_rows` is log2 of the number of rows.
template <typename V, int R, bool Square>
void pointwise(double* a, const double* b, const double* base_turns, const double* level, int log_rows,
               std::uint64_t begin, std::uint64_t end) {
    using Row = PointwiseRow<V, R>;
    const auto turn_of = [&](std::uint64_t h) KERNEL_INLINE_LAMBDA {
        const std::uint64_t index = reversed_bits(h, log_rows);
        const double* group = level + (index / 2) * 16 + 8 + index % 2;
        return Complex<V>{V::set(group[0]), V::set(group[2])};
    };
    if (begin == 0) {
        Row::template first_row<Square>(a, b, base_turns);
        if (log_rows > 0) Row::template pair_rows<Square>(a, b, 1, 1, base_turns, turn_of(1));
        begin = 1;
    }
    for (std::uint64_t m = begin; m < end; ++m) {
        const int q = 64 - __builtin_clzll(m);  // 2^(q-1) <= m < 2^q
        const std::uint64_t h = m + (std::uint64_t{1} << (q - 1));
        const std::uint64_t mirror = (std::uint64_t{3} << q) - 1 - h;
        Row::template pair_rows<Square>(a, b, h, mirror, base_turns, turn_of(h));
    }
}

}  // namespace
