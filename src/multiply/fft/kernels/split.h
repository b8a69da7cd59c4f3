// Words to points: consecutive fields of Width bits, least significant first, less 2^(Width - 1), as the
// complex numbers point(2e) + i * point(2e + 1).
//
// Taking 2^(Width - 1) away costs nothing (it is part of the conversion to double) and quarters the
// largest rounding error; the merge puts its share back. Points beyond the operand are fields of zeros.
#pragma once

#include <cstdint>

#include "multiply/fft/kernels/complex.h"
#include "multiply/fft/kernels/kernels.h"

namespace {

constexpr std::uint64_t points_per_group = 16;
// What a vector type may read from the first byte of a group on.
constexpr std::uint64_t group_window = 64;

template <typename V, int Width, int First>
KERNEL_INLINE void split_elements(double* target, const unsigned char* source) {
    if constexpr (First < static_cast<int>(points_per_group / 2)) {
        Complex<V> x;
        V::template load_points<Width, First>(source, x.re, x.im);
        store_complex(target + 2 * First, x);
        split_elements<V, Width, First + V::lanes>(target, source);
    }
}

// Groups [begin, end) of 16 points, from an operand of `count` bytes.
template <typename V, int Width>
void split(double* data, const unsigned char* bytes, std::uint64_t count, std::uint64_t begin,
           std::uint64_t end) {
    constexpr std::uint64_t group_bytes = 2 * Width;
    const std::uint64_t whole = count < group_window ? 0 : (count - group_window) / group_bytes + 1;
    const std::uint64_t touched = (count + group_bytes - 1) / group_bytes;
    std::uint64_t group = begin;
    for (; group < end && group < whole; ++group) {
        split_elements<V, Width, 0>(data + group * points_per_group, bytes + group * group_bytes);
    }
    for (; group < end && group < touched; ++group) {
        alignas(16) unsigned char window[group_window] = {};
        const std::uint64_t left = count - group * group_bytes;
        __builtin_memcpy(window, bytes + group * group_bytes, left < group_window ? left : group_window);
        split_elements<V, Width, 0>(data + group * points_per_group, window);
    }
    const auto empty = V::set(qmp::fft::empty_point(Width));
    for (; group < end; ++group) {
        for (std::uint64_t i = 0; i < points_per_group; i += V::lanes) {
            V::store(data + group * points_per_group + i, empty);
        }
    }
}

}  // namespace
