// GCC 12 takes the deliberately undefined pass-through operands of its own AVX-512 intrinsics for errors.
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

// The word codecs with 512-bit vectors.
#include <immintrin.h>

#include "radix/word_codecs_kernel.h"

namespace {

struct Words512 {
    using Vector = __m512i;
    static constexpr std::uint64_t words = 8;

    static KERNEL_INLINE Vector load(const void* p) { return _mm512_loadu_si512(p); }
    static KERNEL_INLINE void store(void* p, Vector v) { _mm512_storeu_si512(p, v); }
    static KERNEL_INLINE Vector load_every_second(const char* p) {
        const __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
        return _mm512_inserti64x4(_mm512_castsi256_si512(first),
                                  _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 38)), 1);
    }

    static KERNEL_INLINE Vector all8(int v) { return _mm512_set1_epi8(static_cast<char>(v)); }
    static KERNEL_INLINE Vector all16(int v) { return _mm512_set1_epi16(static_cast<short>(v)); }
    static KERNEL_INLINE Vector factor16(int v) {
        Vector factors = all16(v);
        asm("" : "+v"(factors));
        return factors;
    }
    static KERNEL_INLINE Vector all64(long long v) { return _mm512_set1_epi64(v); }
    static KERNEL_INLINE Vector every_group(__m128i v) { return _mm512_broadcast_i32x4(v); }
    static KERNEL_INLINE Vector alternate(__m128i even, __m128i odd) {
        return _mm512_broadcast_i64x4(_mm256_set_m128i(odd, even));
    }

    static KERNEL_INLINE Vector bit_and(Vector a, Vector b) { return _mm512_and_si512(a, b); }
    static KERNEL_INLINE Vector bit_or(Vector a, Vector b) { return _mm512_or_si512(a, b); }
    static KERNEL_INLINE Vector add8(Vector a, Vector b) { return _mm512_add_epi8(a, b); }
    static KERNEL_INLINE Vector sub16(Vector a, Vector b) { return _mm512_sub_epi16(a, b); }
    static KERNEL_INLINE Vector sub_low_halves(Vector a, Vector b) {
        return _mm512_maskz_sub_epi32(0x5555, a, b);
    }
    static KERNEL_INLINE Vector add64(Vector a, Vector b) { return _mm512_add_epi64(a, b); }
    static KERNEL_INLINE Vector sub64(Vector a, Vector b) { return _mm512_sub_epi64(a, b); }
    static KERNEL_INLINE Vector mul_low_halves(Vector a, Vector b) { return _mm512_mul_epu32(a, b); }
    static KERNEL_INLINE Vector mul_low16(Vector a, Vector b) { return _mm512_mullo_epi16(a, b); }
    static KERNEL_INLINE Vector mul_high16(Vector a, Vector b) { return _mm512_mulhi_epu16(a, b); }
    static KERNEL_INLINE Vector multiply_add8(Vector a, Vector b) { return _mm512_maddubs_epi16(a, b); }
    static KERNEL_INLINE Vector multiply_add16(Vector a, Vector b) { return _mm512_madd_epi16(a, b); }
    template <int bits>
    static KERNEL_INLINE Vector right16(Vector v) {
        return _mm512_srli_epi16(v, bits);
    }
    template <int bits>
    static KERNEL_INLINE Vector left16(Vector v) {
        return _mm512_slli_epi16(v, bits);
    }
    template <int bits>
    static KERNEL_INLINE Vector left32(Vector v) {
        return _mm512_slli_epi32(v, bits);
    }
    template <int bits>
    static KERNEL_INLINE Vector right64(Vector v) {
        return _mm512_srli_epi64(v, bits);
    }
    template <int bits>
    static KERNEL_INLINE Vector left64(Vector v) {
        return _mm512_slli_epi64(v, bits);
    }
    static KERNEL_INLINE Vector unpack_low8(Vector a, Vector b) { return _mm512_unpacklo_epi8(a, b); }
    static KERNEL_INLINE Vector unpack_high8(Vector a, Vector b) { return _mm512_unpackhi_epi8(a, b); }
    static KERNEL_INLINE Vector unpack_low16(Vector a, Vector b) { return _mm512_unpacklo_epi16(a, b); }
    static KERNEL_INLINE Vector unpack_high16(Vector a, Vector b) { return _mm512_unpackhi_epi16(a, b); }
    static KERNEL_INLINE Vector pack16(Vector a, Vector b) { return _mm512_packus_epi16(a, b); }
    static KERNEL_INLINE Vector pack32(Vector a, Vector b) { return _mm512_packus_epi32(a, b); }
    static KERNEL_INLINE Vector shuffle8(Vector a, Vector b) { return _mm512_shuffle_epi8(a, b); }
    static KERNEL_INLINE void correct(Vector& quotient, Vector& remainder, long long divisor) {
        const __mmask8 one_more = _mm512_cmpge_epu64_mask(remainder, all64(divisor));
        quotient = _mm512_mask_add_epi64(quotient, one_more, quotient, all64(1));
        remainder = _mm512_mask_sub_epi64(remainder, one_more, remainder, all64(divisor));
    }

    template <int bytes>
    static KERNEL_INLINE Vector align_bytes(Vector high, Vector low) {
        return _mm512_alignr_epi8(high, low, bytes);
    }
    template <int bytes>
    static KERNEL_INLINE Vector left_bytes(Vector v) {
        return _mm512_bslli_epi128(v, bytes);
    }
    template <int bytes>
    static KERNEL_INLINE Vector right_bytes(Vector v) {
        return _mm512_bsrli_epi128(v, bytes);
    }
    static KERNEL_INLINE Vector lower_pairs(Vector a, Vector b) {
        return _mm512_permutex2var_epi64(a, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), b);
    }
    static KERNEL_INLINE Vector upper_pairs(Vector a, Vector b) {
        return _mm512_permutex2var_epi64(a, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), b);
    }
    static KERNEL_INLINE void store_in_turn(char* p, Vector a, Vector b) {
        const auto put = [](char* to, __m256i v)
                             KERNEL_INLINE_LAMBDA { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v); };
        put(p, _mm512_castsi512_si256(a));
        put(p + 19, _mm512_castsi512_si256(b));
        put(p + 38, _mm512_extracti64x4_epi64(a, 1));
        put(p + 57, _mm512_extracti64x4_epi64(b, 1));
    }
    static KERNEL_INLINE Vector even_groups(Vector a, Vector b) { return _mm512_shuffle_i64x2(a, b, 0x88); }
    static KERNEL_INLINE Vector odd_groups(Vector a, Vector b) { return _mm512_shuffle_i64x2(a, b, 0xdd); }
    static KERNEL_INLINE Vector reverse_words(Vector v) {
        return _mm512_permutexvar_epi64(_mm512_setr_epi64(7, 6, 5, 4, 3, 2, 1, 0), v);
    }
    static KERNEL_INLINE Vector interleave_halves(Vector v) {
        return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), v);
    }
    static KERNEL_INLINE Vector deinterleave_halves(Vector v) {
        return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), v);
    }

    // The conversion and the product are off by 2^-53 each; the factor is 2^-50 below 10^-8, so that the
    // product is never above the quotient, and by less than 2^-12 below it.
    static KERNEL_INLINE Vector quotient(Vector w) {
        const __m512d factor = _mm512_set1_pd(1e-8 * (1 - 0x1p-50));
        return _mm512_cvttpd_epu64(_mm512_mul_pd(_mm512_cvtepu64_pd(w), factor));
    }
};

}  // namespace

namespace qmp::radix {

const WordCodecs& avx512_word_codecs() {
    static const WordCodecs codecs = WideWordCodecs<Words512>::table("AVX-512");
    return codecs;
}

}  // namespace qmp::radix
