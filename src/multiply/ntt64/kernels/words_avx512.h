// Eight words in a 512-bit vector. High halves of products are put together from those of half words.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "multiply/vectors/inline.h"

namespace {

struct WordsAvx512 {
    static constexpr int lanes = 8;
    using Words = __m512i;

    static KERNEL_INLINE Words load(const std::uint64_t* p) { return _mm512_loadu_si512(p); }
    static KERNEL_INLINE void store(std::uint64_t* p, Words a) { _mm512_storeu_si512(p, a); }
    static KERNEL_INLINE Words set(std::uint64_t a) { return _mm512_set1_epi64(static_cast<long long>(a)); }
    static KERNEL_INLINE Words gather(const unsigned char* bytes, std::uint64_t stride) {
        const Words at = _mm512_mul_epu32(set(stride), _mm512_set_epi64(7, 6, 5, 4, 3, 2, 1, 0));
        return _mm512_i64gather_epi64(at, bytes, 1);
    }
    static KERNEL_INLINE Words add(Words a, Words b) { return _mm512_add_epi64(a, b); }
    static KERNEL_INLINE Words sub(Words a, Words b) { return _mm512_sub_epi64(a, b); }
    static KERNEL_INLINE Words bit_and(Words a, Words b) { return _mm512_and_si512(a, b); }
    static KERNEL_INLINE Words min(Words a, Words b) { return _mm512_min_epu64(a, b); }
    static KERNEL_INLINE Words mul_low(Words a, Words b) { return _mm512_mullo_epi64(a, b); }
    static KERNEL_INLINE Words mul_high(Words a, Words b) {
        const Words low_half = set(0xffffffff);
        const Words a_high = _mm512_srli_epi64(a, 32), b_high = _mm512_srli_epi64(b, 32);
        const Words lowest = _mm512_srli_epi64(_mm512_mul_epu32(a, b), 32);
        const Words middle = _mm512_add_epi64(_mm512_mul_epu32(a_high, b), lowest);
        const Words other = _mm512_add_epi64(_mm512_mul_epu32(a, b_high), _mm512_and_si512(middle, low_half));
        const Words top = _mm512_add_epi64(_mm512_mul_epu32(a_high, b_high), _mm512_srli_epi64(middle, 32));
        return _mm512_add_epi64(top, _mm512_srli_epi64(other, 32));
    }
    static KERNEL_INLINE void transpose(std::uint64_t* to, const std::uint64_t* from) {
        Words pairs[8], fours[8];
        KERNEL_UNROLL(4)
        for (int i = 0; i < 8; i += 2) {
            const Words a = load(from + 8 * i), b = load(from + 8 * i + 8);
            pairs[i] = _mm512_unpacklo_epi64(a, b);
            pairs[i + 1] = _mm512_unpackhi_epi64(a, b);
        }
        // Rows 2i and 2i + 1 next to each other: columns 0, 2, 4, 6 of the even vectors, then 1, 3, 5, 7.
        KERNEL_UNROLL(2)
        for (int i = 0; i < 8; i += 4) {
            KERNEL_UNROLL(2)
            for (int odd = 0; odd < 2; ++odd) {
                fours[i + odd] = _mm512_shuffle_i64x2(pairs[i + odd], pairs[i + 2 + odd], 0x88);
                fours[i + 2 + odd] = _mm512_shuffle_i64x2(pairs[i + odd], pairs[i + 2 + odd], 0xdd);
            }
        }
        KERNEL_UNROLL(2)
        for (int odd = 0; odd < 2; ++odd) {
            store(to + 8 * odd, _mm512_shuffle_i64x2(fours[odd], fours[4 + odd], 0x88));
            store(to + 8 * (4 + odd), _mm512_shuffle_i64x2(fours[odd], fours[4 + odd], 0xdd));
            store(to + 8 * (2 + odd), _mm512_shuffle_i64x2(fours[2 + odd], fours[6 + odd], 0x88));
            store(to + 8 * (6 + odd), _mm512_shuffle_i64x2(fours[2 + odd], fours[6 + odd], 0xdd));
        }
    }
};

}  // namespace
