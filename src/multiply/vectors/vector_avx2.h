// Four lanes of doubles with fused multiply-add (AVX2 and FMA3).
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "multiply/vectors/field_bytes.h"
#include "multiply/vectors/inline.h"

namespace {

// Which bytes of each half, and which bits of them, hold the fields of a load of eight points.
template <int Width, int Parity>
struct FieldPickAvx2 {
    alignas(32) signed char bytes[32];
    alignas(32) std::uint64_t shifts[4];

    // Byte from which the points 4 .. 7 are loaded.
    static constexpr int second_half = 4 * Width / 8;

    constexpr FieldPickAvx2() : bytes(), shifts() {
        for (int lane = 0; lane < 4; ++lane) {
            const int position = (2 * lane + Parity) * Width - (lane < 2 ? 0 : 8 * second_half);
            shifts[lane] = static_cast<std::uint64_t>(position % 8);
            for (int i = 0; i < 8; ++i) {
                bytes[8 * lane + i] = static_cast<signed char>(i < 4 ? position / 8 + i : -1);
            }
        }
    }
};

template <int Width, int Parity>
constexpr FieldPickAvx2<Width, Parity> field_pick_avx2{};

struct VectorAvx2 {
    static constexpr int lanes = 4;
    static constexpr int registers = 16;
    using Real = __m256d;
    using Bits = __m256i;

    static KERNEL_INLINE Real load(const double* p) { return _mm256_loadu_pd(p); }
    static KERNEL_INLINE void store(double* p, Real x) { _mm256_storeu_pd(p, x); }
    // Past the caches, to an aligned address; fence() orders such stores before what follows.
    static KERNEL_INLINE void stream(double* p, Real x) { _mm256_stream_pd(p, x); }
    static KERNEL_INLINE void fence() { _mm_sfence(); }
    static KERNEL_INLINE Real set(double x) { return _mm256_set1_pd(x); }
    static KERNEL_INLINE Real add(Real a, Real b) { return _mm256_add_pd(a, b); }
    static KERNEL_INLINE Real sub(Real a, Real b) { return _mm256_sub_pd(a, b); }
    static KERNEL_INLINE Real mul(Real a, Real b) { return _mm256_mul_pd(a, b); }
    static KERNEL_INLINE Real div(Real a, Real b) { return _mm256_div_pd(a, b); }
    // a * b + c, a * b - c, c - a * b
    static KERNEL_INLINE Real mul_add(Real a, Real b, Real c) { return _mm256_fmadd_pd(a, b, c); }
    static KERNEL_INLINE Real mul_sub(Real a, Real b, Real c) { return _mm256_fmsub_pd(a, b, c); }
    static KERNEL_INLINE Real neg_mul_add(Real a, Real b, Real c) { return _mm256_fnmadd_pd(a, b, c); }

    // To the nearest integer, ties to even; |x| <= 2^52.
    static KERNEL_INLINE Real round(Real x) {
        return _mm256_round_pd(x, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
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
    static KERNEL_INLINE Real reverse(Real x) { return _mm256_permute4x64_pd(x, 0x1b); }
    // Lanes reversed inside each range [2^q, 2^(q+1)); lane 0 stays.
    static KERNEL_INLINE Real reverse_ranges(Real x) { return _mm256_permute_pd(x, 0x6); }
    // Lane 0 of b, the other lanes of a.
    static KERNEL_INLINE Real replace_first(Real a, Real b) { return _mm256_blend_pd(a, b, 1); }
    static KERNEL_INLINE void transpose(Real (&x)[4]) {
        const Real a = _mm256_unpacklo_pd(x[0], x[1]);
        const Real b = _mm256_unpackhi_pd(x[0], x[1]);
        const Real c = _mm256_unpacklo_pd(x[2], x[3]);
        const Real d = _mm256_unpackhi_pd(x[2], x[3]);
        x[0] = _mm256_permute2f128_pd(a, c, 0x20);
        x[1] = _mm256_permute2f128_pd(b, d, 0x20);
        x[2] = _mm256_permute2f128_pd(a, c, 0x31);
        x[3] = _mm256_permute2f128_pd(b, d, 0x31);
    }

    // The twiddle factors of `lanes` successive indices, from groups of four doubles (two cosines, two
    // sines) that lie 16 doubles apart.
    static KERNEL_INLINE void load_twiddle(const double* group, Real& cosine, Real& sine) {
        const Real a = load(group);
        const Real b = load(group + 16);
        cosine = _mm256_permute2f128_pd(a, b, 0x20);
        sine = _mm256_permute2f128_pd(a, b, 0x31);
    }
    static KERNEL_INLINE void load_two_twiddles(const double* groups, Real& c0, Real& s0, Real& c1,
                                                Real& s1) {
        load_twiddle(groups, c0, s0);
        load_twiddle(groups + 4, c1, s1);
    }

    static KERNEL_INLINE Bits bits(Real x) { return _mm256_castpd_si256(x); }
    static KERNEL_INLINE Real reals(Bits x) { return _mm256_castsi256_pd(x); }
    static KERNEL_INLINE Bits set_bits(std::uint64_t x) {
        return _mm256_set1_epi64x(static_cast<long long>(x));
    }
    static KERNEL_INLINE Bits add(Bits a, Bits b) { return _mm256_add_epi64(a, b); }
    static KERNEL_INLINE Bits sub(Bits a, Bits b) { return _mm256_sub_epi64(a, b); }
    static KERNEL_INLINE Bits bit_and(Bits a, Bits b) { return _mm256_and_si256(a, b); }
    static KERNEL_INLINE Bits bit_or(Bits a, Bits b) { return _mm256_or_si256(a, b); }
    template <int Count>
    static KERNEL_INLINE Bits shift_left(Bits a) {
        return _mm256_slli_epi64(a, Count);
    }
    template <int Count>
    static KERNEL_INLINE Bits shift_right(Bits a) {
        return _mm256_srli_epi64(a, Count);
    }
    // Fixes where a value is computed: compilers otherwise put off sums until registers run out.
    static KERNEL_INLINE void pin(Real& x) { asm("" : "+x"(x)); }
    static KERNEL_INLINE void pin(Bits& x) { asm("" : "+x"(x)); }
    // Whether any bit of x is also one of mask.
    static KERNEL_INLINE bool any(Bits x, Bits mask) { return _mm256_testz_si256(x, mask) == 0; }
    // The larger of `largest` and x or, where x is negative, not x, as signed numbers; largest >= 0.
    static KERNEL_INLINE Bits larger_magnitude(Bits largest, Bits x) {
        const Bits size = _mm256_xor_si256(x, _mm256_cmpgt_epi64(_mm256_setzero_si256(), x));
        return _mm256_blendv_epi8(largest, size, _mm256_cmpgt_epi64(size, largest));
    }
    // previous, current as one row of lanes: the lanes one (two) before those of `current`.
    static KERNEL_INLINE Bits shift_one_lane(Bits previous, Bits current) {
        return _mm256_alignr_epi8(current, shift_two_lanes(previous, current), 8);
    }
    static KERNEL_INLINE Bits shift_two_lanes(Bits previous, Bits current) {
        return _mm256_permute2x128_si256(previous, current, 0x21);
    }
    static KERNEL_INLINE void store(std::uint64_t* p, Bits x) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), x);
    }
    static KERNEL_INLINE Bits load(const std::uint64_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    static KERNEL_INLINE void transpose(Bits (&x)[4]) {
        Real y[4];
        for (int i = 0; i < 4; ++i) y[i] = _mm256_castsi256_pd(x[i]);
        transpose(y);
        for (int i = 0; i < 4; ++i) x[i] = _mm256_castpd_si256(y[i]);
    }

    // Elements [First, First + lanes) of a group of 16 points of Width bits: the even points and the odd
    // ones, as doubles less 2^(Width - 1).
    template <int Width, int First>
    static KERNEL_INLINE void load_points(const unsigned char* source, Real& even, Real& odd) {
        source += First * 2 * Width / 8;
        const __m128i* low = reinterpret_cast<const __m128i*>(source);
        const __m128i* high = reinterpret_cast<const __m128i*>(source + FieldPickAvx2<Width, 0>::second_half);
        const Bits raw =
            _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(low)), _mm_loadu_si128(high), 1);
        even = fields<Width, 0>(raw);
        odd = fields<Width, 1>(raw);
    }

    // Two neighbouring fields of FirstBytes and SecondBytes bytes (0 to 6; the second one starts at byte 6)
    // of each of `lanes` points, `stride` bytes apart, as doubles. Reads 16 bytes of each point.
    template <int FirstBytes, int SecondBytes>
    static KERNEL_INLINE void load_fields(const unsigned char* source, std::uint64_t stride, Real& first,
                                          Real& second) {
        static constexpr FieldBytes<FirstBytes, SecondBytes> bytes{};
        const Bits pick =
            _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(bytes.bytes)));
        const Bits even = _mm256_shuffle_epi8(two_points(source, 2 * stride), pick);
        const Bits odd = _mm256_shuffle_epi8(two_points(source + stride, 2 * stride), pick);
        first = small_integers(_mm256_unpacklo_epi64(even, odd));
        if constexpr (SecondBytes > 0) second = small_integers(_mm256_unpackhi_epi64(even, odd));
    }

  private:
    static KERNEL_INLINE Bits two_points(const unsigned char* source, std::uint64_t stride) {
        return _mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source))),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + stride)), 1);
    }
    // Integers below 2^52 to doubles.
    static KERNEL_INLINE Real small_integers(Bits x) {
        return sub(_mm256_castsi256_pd(bit_or(x, set_bits(0x4330000000000000))), set(0x1p52));
    }

    template <int Width, int Parity>
    static KERNEL_INLINE Real fields(Bits raw) {
        const auto& pick = field_pick_avx2<Width, Parity>;
        const Bits chosen =
            _mm256_shuffle_epi8(raw, _mm256_load_si256(reinterpret_cast<const __m256i*>(pick.bytes)));
        const Bits field = bit_and(
            _mm256_srlv_epi64(chosen, _mm256_load_si256(reinterpret_cast<const __m256i*>(pick.shifts))),
            set_bits((std::uint64_t{1} << Width) - 1));
        return sub(_mm256_castsi256_pd(bit_or(field, set_bits(0x4330000000000000))),
                   set(0x1p52 + static_cast<double>(1 << (Width - 1))));
    }
};

}  // namespace
