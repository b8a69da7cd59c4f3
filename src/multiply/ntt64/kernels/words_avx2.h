// Four words in a 256-bit vector. Products are put together from those of half words.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "multiply/vectors/inline.h"

namespace {

struct WordsAvx2 {
    static constexpr int lanes = 4;
    using Words = __m256i;

    static KERNEL_INLINE Words load(const std::uint64_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const Words*>(p));
    }
    static KERNEL_INLINE void store(std::uint64_t* p, Words a) {
        _mm256_storeu_si256(reinterpret_cast<Words*>(p), a);
    }
    static KERNEL_INLINE Words set(std::uint64_t a) { return _mm256_set1_epi64x(static_cast<long long>(a)); }
    static KERNEL_INLINE Words gather(const unsigned char* bytes, std::uint64_t stride) {
        const auto* words = reinterpret_cast<const long long*>(bytes);
        const Words at = _mm256_mul_epu32(set(stride), _mm256_set_epi64x(3, 2, 1, 0));
        return _mm256_i64gather_epi64(words, at, 1);
    }
    static KERNEL_INLINE Words add(Words a, Words b) { return _mm256_add_epi64(a, b); }
    static KERNEL_INLINE Words sub(Words a, Words b) { return _mm256_sub_epi64(a, b); }
    static KERNEL_INLINE Words bit_and(Words a, Words b) { return _mm256_and_si256(a, b); }
    // Unsigned.
    static KERNEL_INLINE Words min(Words a, Words b) {
        const Words sign = set(std::uint64_t{1} << 63);
        const Words greater = _mm256_cmpgt_epi64(_mm256_xor_si256(a, sign), _mm256_xor_si256(b, sign));
        return _mm256_blendv_epi8(a, b, greater);
    }
    static KERNEL_INLINE Words mul_low(Words a, Words b) {
        const Words cross = _mm256_add_epi64(_mm256_mul_epu32(_mm256_srli_epi64(a, 32), b),
                                             _mm256_mul_epu32(a, _mm256_srli_epi64(b, 32)));
        return _mm256_add_epi64(_mm256_mul_epu32(a, b), _mm256_slli_epi64(cross, 32));
    }
    static KERNEL_INLINE Words mul_high(Words a, Words b) {
        const Words low_half = set(0xffffffff);
        const Words a_high = _mm256_srli_epi64(a, 32), b_high = _mm256_srli_epi64(b, 32);
        const Words lowest = _mm256_srli_epi64(_mm256_mul_epu32(a, b), 32);
        const Words middle = _mm256_add_epi64(_mm256_mul_epu32(a_high, b), lowest);
        const Words other = _mm256_add_epi64(_mm256_mul_epu32(a, b_high), _mm256_and_si256(middle, low_half));
        const Words top = _mm256_add_epi64(_mm256_mul_epu32(a_high, b_high), _mm256_srli_epi64(middle, 32));
        return _mm256_add_epi64(top, _mm256_srli_epi64(other, 32));
    }
    static KERNEL_INLINE void transpose(std::uint64_t* to, const std::uint64_t* from) {
        for (int i = 0; i < 8; i += 4) {
            for (int j = 0; j < 8; j += 4) {
                const Words a = load(from + 8 * j + i), b = load(from + 8 * (j + 1) + i);
                const Words c = load(from + 8 * (j + 2) + i), d = load(from + 8 * (j + 3) + i);
                const Words ab0 = _mm256_unpacklo_epi64(a, b), ab1 = _mm256_unpackhi_epi64(a, b);
                const Words cd0 = _mm256_unpacklo_epi64(c, d), cd1 = _mm256_unpackhi_epi64(c, d);
                store(to + 8 * i + j, _mm256_permute2x128_si256(ab0, cd0, 0x20));
                store(to + 8 * (i + 1) + j, _mm256_permute2x128_si256(ab1, cd1, 0x20));
                store(to + 8 * (i + 2) + j, _mm256_permute2x128_si256(ab0, cd0, 0x31));
                store(to + 8 * (i + 3) + j, _mm256_permute2x128_si256(ab1, cd1, 0x31));
            }
        }
    }
};

}  // namespace
