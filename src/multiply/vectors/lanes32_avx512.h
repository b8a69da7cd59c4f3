// Sixteen lanes of 32-bit unsigned integers (AVX-512).
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "multiply/vectors/inline.h"

namespace {

struct Lanes32Avx512 {
    static constexpr int log_lanes = 4;
    static constexpr int lanes = 16;
    static constexpr int halves = 2;      // vectors of 64-bit lanes that hold as many numbers
    static constexpr int half_lanes = 8;  // 64-bit lanes of one
    using Narrow = __m512i;
    using Half = __m512i;
    // 64-bit numbers, one for each lane of a Narrow.
    struct Wide {
        __m512i even, odd;
    };

    static KERNEL_INLINE Narrow load(const std::uint32_t* p) { return _mm512_loadu_si512(p); }
    static KERNEL_INLINE void store(std::uint32_t* p, Narrow x) { _mm512_storeu_si512(p, x); }
    static KERNEL_INLINE Narrow set(std::uint32_t x) { return _mm512_set1_epi32(static_cast<int>(x)); }
    static KERNEL_INLINE Narrow add(Narrow a, Narrow b) { return _mm512_add_epi32(a, b); }
    static KERNEL_INLINE Narrow sub(Narrow a, Narrow b) { return _mm512_sub_epi32(a, b); }
    static KERNEL_INLINE Narrow smaller(Narrow a, Narrow b) { return _mm512_min_epu32(a, b); }
    static KERNEL_INLINE Narrow bits_and(Narrow a, Narrow b) { return _mm512_and_si512(a, b); }
    // The low halves of the products.
    static KERNEL_INLINE Narrow mul_low(Narrow a, Narrow b) { return _mm512_mullo_epi32(a, b); }

    static KERNEL_INLINE Wide wide_mul(Narrow a, Narrow b) {
        return {_mm512_mul_epu32(a, b), _mm512_mul_epu32(_mm512_srli_epi64(a, 32), _mm512_srli_epi64(b, 32))};
    }
    // The low 32 bits of each number times b.
    static KERNEL_INLINE Wide wide_mul_low(Wide a, Narrow b) {
        return {_mm512_mul_epu32(a.even, b), _mm512_mul_epu32(a.odd, _mm512_srli_epi64(b, 32))};
    }
    static KERNEL_INLINE Wide wide_add(Wide a, Wide b) {
        return {_mm512_add_epi64(a.even, b.even), _mm512_add_epi64(a.odd, b.odd)};
    }
    // The high halves of a - b, whose low halves are zero.
    static KERNEL_INLINE Narrow high_of_difference(Wide a, Wide b) {
        return _mm512_or_si512(_mm512_srli_epi64(_mm512_sub_epi64(a.even, b.even), 32),
                               _mm512_sub_epi64(a.odd, b.odd));
    }
    static KERNEL_INLINE void transpose(Narrow (&x)[16]) {
        Narrow a[16], b[16];
        for (int i = 0; i < 8; ++i) {
            a[2 * i] = _mm512_unpacklo_epi32(x[2 * i], x[2 * i + 1]);
            a[2 * i + 1] = _mm512_unpackhi_epi32(x[2 * i], x[2 * i + 1]);
        }
        // b[4 i + c] holds in each of its quarters q the column 4 q + c of the rows 4 i .. 4 i + 3.
        for (int i = 0; i < 4; ++i) {
            b[4 * i] = _mm512_unpacklo_epi64(a[4 * i], a[4 * i + 2]);
            b[4 * i + 1] = _mm512_unpackhi_epi64(a[4 * i], a[4 * i + 2]);
            b[4 * i + 2] = _mm512_unpacklo_epi64(a[4 * i + 1], a[4 * i + 3]);
            b[4 * i + 3] = _mm512_unpackhi_epi64(a[4 * i + 1], a[4 * i + 3]);
        }
        for (int c = 0; c < 4; ++c) {
            const Narrow low01 = _mm512_shuffle_i32x4(b[c], b[4 + c], 0x88);
            const Narrow high01 = _mm512_shuffle_i32x4(b[c], b[4 + c], 0xdd);
            const Narrow low23 = _mm512_shuffle_i32x4(b[8 + c], b[12 + c], 0x88);
            const Narrow high23 = _mm512_shuffle_i32x4(b[8 + c], b[12 + c], 0xdd);
            x[c] = _mm512_shuffle_i32x4(low01, low23, 0x88);
            x[4 + c] = _mm512_shuffle_i32x4(high01, high23, 0x88);
            x[8 + c] = _mm512_shuffle_i32x4(low01, low23, 0xdd);
            x[12 + c] = _mm512_shuffle_i32x4(high01, high23, 0xdd);
        }
    }

    // The numbers whose index is `which` modulo `halves`, each in the low 32 bits of its lane; what stands
    // above is undefined.
    static KERNEL_INLINE Half half(Narrow x, int which) { return which == 0 ? x : _mm512_srli_epi64(x, 32); }
    static KERNEL_INLINE void half_store(std::uint64_t* p, Half x) { _mm512_storeu_si512(p, x); }
    static KERNEL_INLINE Half half_set(std::uint64_t x) {
        return _mm512_set1_epi64(static_cast<long long>(x));
    }
    static KERNEL_INLINE Half half_mul_low(Half a, Half b) { return _mm512_mul_epu32(a, b); }
    static KERNEL_INLINE Half half_add(Half a, Half b) { return _mm512_add_epi64(a, b); }
    static KERNEL_INLINE Half half_and(Half a, Half b) { return _mm512_and_si512(a, b); }
    static KERNEL_INLINE Half half_or(Half a, Half b) { return _mm512_or_si512(a, b); }
    static KERNEL_INLINE Half half_left(Half a, int n) {
        return _mm512_slli_epi64(a, static_cast<unsigned>(n));
    }
    static KERNEL_INLINE Half half_right(Half a, int n) {
        return _mm512_srli_epi64(a, static_cast<unsigned>(n));
    }
};

}  // namespace
