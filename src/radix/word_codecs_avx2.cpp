// The word codecs with 256-bit vectors.
#include <immintrin.h>

#include "radix/word_codecs_kernel.h"

namespace {

struct Words256 {
    using Vector = __m256i;
    static constexpr std::uint64_t words = 4;

    static KERNEL_INLINE Vector load(const void* p) {
        return _mm256_loadu_si256(static_cast<const __m256i*>(p));
    }
    static KERNEL_INLINE void store(void* p, Vector v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
    static KERNEL_INLINE Vector load_every_second(const char* p) { return load(p); }

    static KERNEL_INLINE Vector all8(int v) { return _mm256_set1_epi8(static_cast<char>(v)); }
    static KERNEL_INLINE Vector all16(int v) { return _mm256_set1_epi16(static_cast<short>(v)); }
    static KERNEL_INLINE Vector factor16(int v) {
        Vector factors = all16(v);
        asm("" : "+x"(factors));
        return factors;
    }
    static KERNEL_INLINE Vector all64(long long v) { return _mm256_set1_epi64x(v); }
    static KERNEL_INLINE Vector every_group(__m128i v) { return _mm256_broadcastsi128_si256(v); }
    static KERNEL_INLINE Vector alternate(__m128i even, __m128i odd) { return _mm256_set_m128i(odd, even); }

    static KERNEL_INLINE Vector bit_and(Vector a, Vector b) { return _mm256_and_si256(a, b); }
    static KERNEL_INLINE Vector bit_or(Vector a, Vector b) { return _mm256_or_si256(a, b); }
    static KERNEL_INLINE Vector add8(Vector a, Vector b) { return _mm256_add_epi8(a, b); }
    static KERNEL_INLINE Vector sub16(Vector a, Vector b) { return _mm256_sub_epi16(a, b); }
    static KERNEL_INLINE Vector sub_low_halves(Vector a, Vector b) {
        return _mm256_blend_epi32(_mm256_setzero_si256(), _mm256_sub_epi32(a, b), 0x55);
    }
    static KERNEL_INLINE Vector add64(Vector a, Vector b) { return _mm256_add_epi64(a, b); }
    static KERNEL_INLINE Vector sub64(Vector a, Vector b) { return _mm256_sub_epi64(a, b); }
    static KERNEL_INLINE Vector mul_low_halves(Vector a, Vector b) { return _mm256_mul_epu32(a, b); }
    static KERNEL_INLINE Vector mul_low16(Vector a, Vector b) { return _mm256_mullo_epi16(a, b); }
    static KERNEL_INLINE Vector mul_high16(Vector a, Vector b) { return _mm256_mulhi_epu16(a, b); }
    static KERNEL_INLINE Vector multiply_add8(Vector a, Vector b) { return _mm256_maddubs_epi16(a, b); }
    static KERNEL_INLINE Vector multiply_add16(Vector a, Vector b) { return _mm256_madd_epi16(a, b); }
    template <int bits>
    static KERNEL_INLINE Vector right16(Vector v) {
        return _mm256_srli_epi16(v, bits);
    }
    template <int bits>
    static KERNEL_INLINE Vector left16(Vector v) {
        return _mm256_slli_epi16(v, bits);
    }
    template <int bits>
    static KERNEL_INLINE Vector left32(Vector v) {
        return _mm256_slli_epi32(v, bits);
    }
    template <int bits>
    static KERNEL_INLINE Vector right64(Vector v) {
        return _mm256_srli_epi64(v, bits);
    }
    template <int bits>
    static KERNEL_INLINE Vector left64(Vector v) {
        return _mm256_slli_epi64(v, bits);
    }
    static KERNEL_INLINE Vector unpack_low8(Vector a, Vector b) { return _mm256_unpacklo_epi8(a, b); }
    static KERNEL_INLINE Vector unpack_high8(Vector a, Vector b) { return _mm256_unpackhi_epi8(a, b); }
    static KERNEL_INLINE Vector unpack_low16(Vector a, Vector b) { return _mm256_unpacklo_epi16(a, b); }
    static KERNEL_INLINE Vector unpack_high16(Vector a, Vector b) { return _mm256_unpackhi_epi16(a, b); }
    static KERNEL_INLINE Vector pack16(Vector a, Vector b) { return _mm256_packus_epi16(a, b); }
    static KERNEL_INLINE Vector pack32(Vector a, Vector b) { return _mm256_packus_epi32(a, b); }
    static KERNEL_INLINE Vector shuffle8(Vector a, Vector b) { return _mm256_shuffle_epi8(a, b); }
    static KERNEL_INLINE void correct(Vector& quotient, Vector& remainder, long long divisor) {
        const Vector one_more = _mm256_cmpgt_epi64(remainder, all64(divisor - 1));
        quotient = sub64(quotient, one_more);
        remainder = sub64(remainder, bit_and(one_more, all64(divisor)));
    }

    template <int bytes>
    static KERNEL_INLINE Vector align_bytes(Vector high, Vector low) {
        return _mm256_alignr_epi8(high, low, bytes);
    }
    template <int bytes>
    static KERNEL_INLINE Vector left_bytes(Vector v) {
        return _mm256_bslli_epi128(v, bytes);
    }
    template <int bytes>
    static KERNEL_INLINE Vector right_bytes(Vector v) {
        return _mm256_bsrli_epi128(v, bytes);
    }
    static KERNEL_INLINE Vector lower_pairs(Vector a, Vector b) { return even_groups(a, b); }
    static KERNEL_INLINE Vector upper_pairs(Vector a, Vector b) { return odd_groups(a, b); }
    static KERNEL_INLINE void store_in_turn(char* p, Vector a, Vector b) {
        store(p, a);
        store(p + 19, b);
    }
    static KERNEL_INLINE Vector even_groups(Vector a, Vector b) {
        return _mm256_permute2x128_si256(a, b, 0x20);
    }
    static KERNEL_INLINE Vector odd_groups(Vector a, Vector b) {
        return _mm256_permute2x128_si256(a, b, 0x31);
    }
    static KERNEL_INLINE Vector reverse_words(Vector v) { return _mm256_permute4x64_epi64(v, 0x1b); }
    static KERNEL_INLINE Vector interleave_halves(Vector v) { return _mm256_permute4x64_epi64(v, 0xd8); }
    static KERNEL_INLINE Vector deinterleave_halves(Vector v) { return _mm256_permute4x64_epi64(v, 0xd8); }

    // The halves of a word become doubles as mantissas of 2^84 and 2^52; only their sum is rounded, and the
    // product, by 2^-53 each. The factor is 2^-50 below 10^-8, so that the product is never above the
    // quotient, and by less than 2^-12 below it. The whole number below it becomes a mantissa of 2^52 again.
    static KERNEL_INLINE Vector quotient(Vector w) {
        const __m256d two_52 = _mm256_set1_pd(0x1p52);
        const __m256d two_84 = _mm256_set1_pd(0x1p84);
        const __m256d high = _mm256_or_pd(_mm256_castsi256_pd(right64<32>(w)), two_84);
        const Vector low = _mm256_blend_epi32(_mm256_castpd_si256(two_52), w, 0x55);
        const __m256d sum =
            _mm256_add_pd(_mm256_sub_pd(high, _mm256_set1_pd(0x1p84 + 0x1p52)), _mm256_castsi256_pd(low));
        const __m256d product = _mm256_mul_pd(sum, _mm256_set1_pd(1e-8 * (1 - 0x1p-50)));
        const __m256d whole = _mm256_add_pd(_mm256_floor_pd(product), two_52);
        return _mm256_castpd_si256(_mm256_xor_pd(whole, two_52));
    }
};

}  // namespace

namespace qmp::radix {

const WordCodecs& avx2_word_codecs() {
    static const WordCodecs codecs = WideWordCodecs<Words256>::table("AVX2");
    return codecs;
}

}  // namespace qmp::radix
