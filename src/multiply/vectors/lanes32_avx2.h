// Eight lanes of 32-bit unsigned integers (AVX2).
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "multiply/vectors/inline.h"

namespace {

struct Lanes32Avx2 {
    static constexpr int log_lanes = 3;
    static constexpr int lanes = 8;
    static constexpr int halves = 2;      // vectors of 64-bit lanes that hold as many numbers
    static constexpr int half_lanes = 4;  // 64-bit lanes of one
    using Narrow = __m256i;
    using Half = __m256i;
    // 64-bit numbers, one for each lane of a Narrow.
    struct Wide {
        __m256i even, odd;
    };

    static KERNEL_INLINE Narrow load(const std::uint32_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    static KERNEL_INLINE void store(std::uint32_t* p, Narrow x) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), x);
    }
    static KERNEL_INLINE Narrow set(std::uint32_t x) { return _mm256_set1_epi32(static_cast<int>(x)); }
    static KERNEL_INLINE Narrow add(Narrow a, Narrow b) { return _mm256_add_epi32(a, b); }
    static KERNEL_INLINE Narrow sub(Narrow a, Narrow b) { return _mm256_sub_epi32(a, b); }
    static KERNEL_INLINE Narrow smaller(Narrow a, Narrow b) { return _mm256_min_epu32(a, b); }
    static KERNEL_INLINE Narrow bits_and(Narrow a, Narrow b) { return _mm256_and_si256(a, b); }
    // The low halves of the products.
    static KERNEL_INLINE Narrow mul_low(Narrow a, Narrow b) { return _mm256_mullo_epi32(a, b); }

    static KERNEL_INLINE Wide wide_mul(Narrow a, Narrow b) {
        return {_mm256_mul_epu32(a, b), _mm256_mul_epu32(_mm256_srli_epi64(a, 32), _mm256_srli_epi64(b, 32))};
    }
    // The low 32 bits of each number times b.
    static KERNEL_INLINE Wide wide_mul_low(Wide a, Narrow b) {
        return {_mm256_mul_epu32(a.even, b), _mm256_mul_epu32(a.odd, _mm256_srli_epi64(b, 32))};
    }
    static KERNEL_INLINE Wide wide_add(Wide a, Wide b) {
        return {_mm256_add_epi64(a.even, b.even), _mm256_add_epi64(a.odd, b.odd)};
    }
    // The high halves of a - b, whose low halves are zero.
    static KERNEL_INLINE Narrow high_of_difference(Wide a, Wide b) {
        return _mm256_or_si256(_mm256_srli_epi64(_mm256_sub_epi64(a.even, b.even), 32),
                               _mm256_sub_epi64(a.odd, b.odd));
    }
    static KERNEL_INLINE void transpose(Narrow (&x)[8]) {
        Narrow a[8], b[8];
        for (int i = 0; i < 4; ++i) {
            a[2 * i] = _mm256_unpacklo_epi32(x[2 * i], x[2 * i + 1]);
            a[2 * i + 1] = _mm256_unpackhi_epi32(x[2 * i], x[2 * i + 1]);
        }
        for (int i = 0; i < 2; ++i) {
            b[4 * i] = _mm256_unpacklo_epi64(a[4 * i], a[4 * i + 2]);
            b[4 * i + 1] = _mm256_unpackhi_epi64(a[4 * i], a[4 * i + 2]);
            b[4 * i + 2] = _mm256_unpacklo_epi64(a[4 * i + 1], a[4 * i + 3]);
            b[4 * i + 3] = _mm256_unpackhi_epi64(a[4 * i + 1], a[4 * i + 3]);
        }
        for (int i = 0; i < 4; ++i) {
            x[i] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x20);
            x[i + 4] = _mm256_permute2x128_si256(b[i], b[i + 4], 0x31);
        }
    }

    // The numbers whose index is `which` modulo `halves`, each in the low 32 bits of its lane; what stands
    // above is undefined.
    static KERNEL_INLINE Half half(Narrow x, int which) { return which == 0 ? x : _mm256_srli_epi64(x, 32); }
    static KERNEL_INLINE void half_store(std::uint64_t* p, Half x) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), x);
    }
    static KERNEL_INLINE Half half_set(std::uint64_t x) {
        return _mm256_set1_epi64x(static_cast<long long>(x));
    }
    static KERNEL_INLINE Half half_mul_low(Half a, Half b) { return _mm256_mul_epu32(a, b); }
    static KERNEL_INLINE Half half_add(Half a, Half b) { return _mm256_add_epi64(a, b); }
    static KERNEL_INLINE Half half_and(Half a, Half b) { return _mm256_and_si256(a, b); }
    static KERNEL_INLINE Half half_or(Half a, Half b) { return _mm256_or_si256(a, b); }
    static KERNEL_INLINE Half half_left(Half a, int n) { return _mm256_slli_epi64(a, n); }
    static KERNEL_INLINE Half half_right(Half a, int n) { return _mm256_srli_epi64(a, n); }
};

}  // namespace
