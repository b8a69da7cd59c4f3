// Eight lanes of doubles (AVX-512 F, DQ, BW and VL).
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "multiply/vectors/field_bytes.h"
#include "multiply/vectors/inline.h"

namespace {

// Which 16-bit units, and which bits of them, hold the even or the odd points of a group of 16.
template <int Width, int Parity>
struct FieldPickAvx512 {
    alignas(64) std::uint16_t units[32];
    alignas(64) std::uint64_t shifts[8];

    constexpr FieldPickAvx512() : units(), shifts() {
        for (int lane = 0; lane < 8; ++lane) {
            const int position = (2 * lane + Parity) * Width;
            shifts[lane] = static_cast<std::uint64_t>(position % 16);
            for (int i = 0; i < 4; ++i) units[4 * lane + i] = static_cast<std::uint16_t>(position / 16 + i);
        }
    }
};

template <int Width, int Parity>
constexpr FieldPickAvx512<Width, Parity> field_pick_avx512{};

// Which 16-bit units of two vectors, the first ones of limbs Pair and Pair + 1 of eight points, make the 32
// units from 32 * Part on of the points' limbs in a row, three units each; and which of those 32 they are.
template <int Limbs, int Part, int Pair>
struct LimbPickAvx512 {
    alignas(64) std::uint16_t units[32];
    std::uint32_t mask;

    constexpr LimbPickAvx512() : units(), mask(0) {
        for (int i = 0; i < 32; ++i) {
            const int point = (32 * Part + i) / (3 * Limbs), limb = (32 * Part + i) / 3 % Limbs;
            if (point >= 8 || limb / 2 != Pair / 2) continue;
            mask |= std::uint32_t{1} << i;
            units[i] = static_cast<std::uint16_t>(32 * (limb % 2) + 4 * point + (32 * Part + i) % 3);
        }
    }
};

template <int Limbs, int Part, int Pair>
constexpr LimbPickAvx512<Limbs, Part, Pair> limb_pick_avx512{};

alignas(64) constexpr std::int64_t reversed_lanes_avx512[8] = {7, 6, 5, 4, 3, 2, 1, 0};
alignas(64) constexpr std::int64_t reversed_ranges_avx512[8] = {0, 1, 3, 2, 7, 6, 5, 4};

struct VectorAvx512 {
    static constexpr int lanes = 8;
    static constexpr int registers = 32;
    using Real = __m512d;
    using Bits = __m512i;

    static KERNEL_INLINE Real load(const double* p) { return _mm512_loadu_pd(p); }
    static KERNEL_INLINE void store(double* p, Real x) { _mm512_storeu_pd(p, x); }
    // Past the caches, to an aligned address; fence() orders such stores before what follows.
    static KERNEL_INLINE void stream(double* p, Real x) { _mm512_stream_pd(p, x); }
    static KERNEL_INLINE void fence() { _mm_sfence(); }
    static KERNEL_INLINE Real set(double x) { return _mm512_set1_pd(x); }
    static KERNEL_INLINE Real add(Real a, Real b) { return _mm512_add_pd(a, b); }
    static KERNEL_INLINE Real sub(Real a, Real b) { return _mm512_sub_pd(a, b); }
    static KERNEL_INLINE Real mul(Real a, Real b) { return _mm512_mul_pd(a, b); }
    static KERNEL_INLINE Real div(Real a, Real b) { return _mm512_div_pd(a, b); }
    // a * b + c, a * b - c, c - a * b
    static KERNEL_INLINE Real mul_add(Real a, Real b, Real c) { return _mm512_fmadd_pd(a, b, c); }
    static KERNEL_INLINE Real mul_sub(Real a, Real b, Real c) { return _mm512_fmsub_pd(a, b, c); }
    static KERNEL_INLINE Real neg_mul_add(Real a, Real b, Real c) { return _mm512_fnmadd_pd(a, b, c); }

    // To the nearest integer, ties to even; |x| <= 2^52.
    static KERNEL_INLINE Real round(Real x) {
        return _mm512_roundscale_pd(x, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
    }
    // a * b, rounded once, to the nearest integer for |a * b| <= 2^51, and to the nearest even one for
    // |a * b| <= 2^52: a multiply-add, and an addition instead of the two operations of round().
    static KERNEL_INLINE Real rounded_product(Real a, Real b) {
        return sub(mul_add(a, b, set(0x1.8p52)), set(0x1.8p52));
    }
    static KERNEL_INLINE Real rounded_long_product(Real a, Real b) {
        return sub(mul_add(a, b, set(0x1.8p53)), set(0x1.8p53));
    }

    // Lane order reversed.
    static KERNEL_INLINE Real reverse(Real x) {
        return _mm512_permutexvar_pd(_mm512_load_si512(reversed_lanes_avx512), x);
    }
    // Lanes reversed inside each range [2^q, 2^(q+1)); lane 0 stays.
    static KERNEL_INLINE Real reverse_ranges(Real x) {
        return _mm512_permutexvar_pd(_mm512_load_si512(reversed_ranges_avx512), x);
    }
    // Lane 0 of b, the other lanes of a.
    static KERNEL_INLINE Real replace_first(Real a, Real b) { return _mm512_mask_blend_pd(1, a, b); }
    static KERNEL_INLINE void transpose(Real (&x)[8]) {
        const Real a0 = _mm512_unpacklo_pd(x[0], x[1]), a1 = _mm512_unpackhi_pd(x[0], x[1]);
        const Real a2 = _mm512_unpacklo_pd(x[2], x[3]), a3 = _mm512_unpackhi_pd(x[2], x[3]);
        const Real a4 = _mm512_unpacklo_pd(x[4], x[5]), a5 = _mm512_unpackhi_pd(x[4], x[5]);
        const Real a6 = _mm512_unpacklo_pd(x[6], x[7]), a7 = _mm512_unpackhi_pd(x[6], x[7]);
        transpose_pairs(a0, a2, a4, a6, x[0], x[2], x[4], x[6]);
        transpose_pairs(a1, a3, a5, a7, x[1], x[3], x[5], x[7]);
    }

    // The twiddle factors of `lanes` successive indices, from groups of four doubles (two cosines, two
    // sines) that lie 16 doubles apart.
    static KERNEL_INLINE void load_twiddle(const double* group, Real& cosine, Real& sine) {
        const Real ab = _mm512_insertf64x4(_mm512_castpd256_pd512(_mm256_loadu_pd(group)),
                                           _mm256_loadu_pd(group + 16), 1);
        const Real cd = _mm512_insertf64x4(_mm512_castpd256_pd512(_mm256_loadu_pd(group + 32)),
                                           _mm256_loadu_pd(group + 48), 1);
        cosine = _mm512_shuffle_f64x2(ab, cd, 0x88);
        sine = _mm512_shuffle_f64x2(ab, cd, 0xdd);
    }
    // Two neighbouring groups at once.
    static KERNEL_INLINE void load_two_twiddles(const double* groups, Real& c0, Real& s0, Real& c1,
                                                Real& s1) {
        transpose_pairs(load(groups), load(groups + 16), load(groups + 32), load(groups + 48), c0, s0, c1,
                        s1);
    }

    static KERNEL_INLINE Bits bits(Real x) { return _mm512_castpd_si512(x); }
    static KERNEL_INLINE Real reals(Bits x) { return _mm512_castsi512_pd(x); }
    static KERNEL_INLINE Bits set_bits(std::uint64_t x) {
        return _mm512_set1_epi64(static_cast<long long>(x));
    }
    static KERNEL_INLINE Bits add(Bits a, Bits b) { return _mm512_add_epi64(a, b); }
    static KERNEL_INLINE Bits sub(Bits a, Bits b) { return _mm512_sub_epi64(a, b); }
    static KERNEL_INLINE Bits bit_and(Bits a, Bits b) { return _mm512_and_si512(a, b); }
    static KERNEL_INLINE Bits bit_or(Bits a, Bits b) { return _mm512_or_si512(a, b); }
    template <int Count>
    static KERNEL_INLINE Bits shift_left(Bits a) {
        return _mm512_slli_epi64(a, Count);
    }
    template <int Count>
    static KERNEL_INLINE Bits shift_right(Bits a) {
        return _mm512_srli_epi64(a, Count);
    }
    // Fixes where a value is computed: compilers otherwise put off sums until registers run out.
    static KERNEL_INLINE void pin(Real& x) { asm("" : "+v"(x)); }
    static KERNEL_INLINE void pin(Bits& x) { asm("" : "+v"(x)); }
    // Whether any bit of x is also one of mask.
    static KERNEL_INLINE bool any(Bits x, Bits mask) { return _mm512_test_epi64_mask(x, mask) != 0; }
    // The larger of `largest` and x or, where x is negative, not x, as signed numbers; largest >= 0.
    static KERNEL_INLINE Bits larger_magnitude(Bits largest, Bits x) {
        return _mm512_max_epi64(largest, _mm512_xor_si512(x, _mm512_srai_epi64(x, 63)));
    }
    // previous, current as one row of lanes: the lanes one (two) before those of `current`.
    static KERNEL_INLINE Bits shift_one_lane(Bits previous, Bits current) {
        return _mm512_alignr_epi64(current, previous, 7);
    }
    static KERNEL_INLINE Bits shift_two_lanes(Bits previous, Bits current) {
        return _mm512_alignr_epi64(current, previous, 6);
    }
    static KERNEL_INLINE void store(std::uint64_t* p, Bits x) { _mm512_storeu_si512(p, x); }
    static KERNEL_INLINE Bits load(const std::uint64_t* p) { return _mm512_loadu_si512(p); }
    static KERNEL_INLINE void transpose(Bits (&x)[8]) {
        Real y[8];
        for (int i = 0; i < 8; ++i) y[i] = _mm512_castsi512_pd(x[i]);
        transpose(y);
        for (int i = 0; i < 8; ++i) x[i] = _mm512_castpd_si512(y[i]);
    }

    // Eight points of three or four limbs of 48 bits, packed; bits above a limb's 48 are ignored.
    template <int Limbs>
    static KERNEL_INLINE void store_limbs(unsigned char* target, const Bits (&x)[Limbs]) {
        _mm512_storeu_si512(target, limb_units<Limbs, 0>(x));
        _mm512_storeu_si512(target + 64, limb_units<Limbs, 1>(x));
        if constexpr (Limbs == 4) {
            _mm512_storeu_si512(target + 128, limb_units<Limbs, 2>(x));
        } else {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(target + 128),
                             _mm512_castsi512_si128(limb_units<Limbs, 2>(x)));
        }
    }

    // Elements [First, First + lanes) of a group of 16 points of Width bits: the even points and the odd
    // ones, as doubles less 2^(Width - 1).
    template <int Width, int First>
    static KERNEL_INLINE void load_points(const unsigned char* source, Real& even, Real& odd) {
        const Bits raw = _mm512_loadu_si512(source);
        even = fields<Width, 0>(raw);
        odd = fields<Width, 1>(raw);
    }

    // Two neighbouring fields of FirstBytes and SecondBytes bytes (0 to 6; the second one starts at byte 6)
    // of each of `lanes` points, `stride` bytes apart, as doubles. Reads 16 bytes of each point.
    template <int FirstBytes, int SecondBytes>
    static KERNEL_INLINE void load_fields(const unsigned char* source, std::uint64_t stride, Real& first,
                                          Real& second) {
        const Bits pick = _mm512_broadcast_i32x4(byte_pick<FirstBytes, SecondBytes>());
        const Bits even = _mm512_shuffle_epi8(four_points(source, 2 * stride), pick);
        const Bits odd = _mm512_shuffle_epi8(four_points(source + stride, 2 * stride), pick);
        first = small_integers(_mm512_unpacklo_epi64(even, odd));
        if constexpr (SecondBytes > 0) second = small_integers(_mm512_unpackhi_epi64(even, odd));
    }

  private:
    template <int FirstBytes, int SecondBytes>
    static KERNEL_INLINE __m128i byte_pick() {
        static constexpr FieldBytes<FirstBytes, SecondBytes> pick{};
        return _mm_load_si128(reinterpret_cast<const __m128i*>(pick.bytes));
    }
    static KERNEL_INLINE Bits four_points(const unsigned char* source, std::uint64_t stride) {
        const auto point = [=](std::uint64_t i) KERNEL_INLINE_LAMBDA {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i * stride));
        };
        Bits x = _mm512_castsi128_si512(point(0));
        x = _mm512_inserti64x2(x, point(1), 1);
        x = _mm512_inserti64x2(x, point(2), 2);
        return _mm512_inserti64x2(x, point(3), 3);
    }
    // Integers below 2^52 to doubles.
    static KERNEL_INLINE Real small_integers(Bits x) {
        return sub(_mm512_castsi512_pd(bit_or(x, set_bits(0x4330000000000000))), set(0x1p52));
    }

    // Rows of four 128-bit pieces become columns.
    static KERNEL_INLINE void transpose_pairs(Real a, Real b, Real c, Real d, Real& x, Real& y, Real& z,
                                              Real& w) {
        const Real ab_low = _mm512_shuffle_f64x2(a, b, 0x44), ab_high = _mm512_shuffle_f64x2(a, b, 0xee);
        const Real cd_low = _mm512_shuffle_f64x2(c, d, 0x44), cd_high = _mm512_shuffle_f64x2(c, d, 0xee);
        x = _mm512_shuffle_f64x2(ab_low, cd_low, 0x88);
        y = _mm512_shuffle_f64x2(ab_low, cd_low, 0xdd);
        z = _mm512_shuffle_f64x2(ab_high, cd_high, 0x88);
        w = _mm512_shuffle_f64x2(ab_high, cd_high, 0xdd);
    }

    template <int Limbs, int Part>
    static KERNEL_INLINE Bits limb_units(const Bits (&x)[Limbs]) {
        static_assert(Limbs == 3 || Limbs == 4);
        const auto& low = limb_pick_avx512<Limbs, Part, 0>;
        const auto& high = limb_pick_avx512<Limbs, Part, 2>;
        const Bits first = _mm512_permutex2var_epi16(x[0], _mm512_load_si512(low.units), x[1]);
        const Bits units = _mm512_load_si512(high.units);
        if constexpr (Limbs == 3) return _mm512_mask_permutexvar_epi16(first, high.mask, units, x[2]);
        return _mm512_mask_blend_epi16(high.mask, first, _mm512_permutex2var_epi16(x[2], units, x[3]));
    }

    template <int Width, int Parity>
    static KERNEL_INLINE Real fields(Bits raw) {
        const auto& pick = field_pick_avx512<Width, Parity>;
        const Bits chosen = _mm512_permutexvar_epi16(_mm512_load_si512(pick.units), raw);
        const Bits shifted = _mm512_srlv_epi64(chosen, _mm512_load_si512(pick.shifts));
        // (shifted and mask) or the exponent of 2^52
        const Bits value = _mm512_ternarylogic_epi64(shifted, set_bits((std::uint64_t{1} << Width) - 1),
                                                     set_bits(0x4330000000000000), 0xea);
        return sub(_mm512_castsi512_pd(value), set(0x1p52 + static_cast<double>(1 << (Width - 1))));
    }
};

}  // namespace
