// Two lanes of doubles with fused multiply-add of four operands (AVX, FMA4 and XOP).
//
// These processors split 256-bit registers in two, so wider vectors would win nothing. vpperm is not used:
// no emulator that the tests can run under executes it right.
#pragma once

#include <immintrin.h>
#include <x86intrin.h>

#include <cstdint>

#include "multiply/vectors/field_bytes.h"
#include "multiply/vectors/inline.h"

namespace {

// Which bytes, and which bits of them, hold the fields of a load that starts Offset bits before its first
// point. The counts are negative: the variable shift of XOP goes right then.
template <int Width, int Offset, int Parity>
struct FieldPickFma4 {
    alignas(16) signed char bytes[16];
    alignas(16) std::int64_t counts[2];

    constexpr FieldPickFma4() : bytes(), counts() {
        for (int lane = 0; lane < 2; ++lane) {
            const int position = Offset + (2 * lane + Parity) * Width;
            counts[lane] = -(position % 8);
            for (int i = 0; i < 8; ++i) {
                bytes[8 * lane + i] = static_cast<signed char>(i < 4 ? position / 8 + i : -1);
            }
        }
    }
};

template <int Width, int Offset, int Parity>
constexpr FieldPickFma4<Width, Offset, Parity> field_pick_fma4{};

struct VectorFma4 {
    static constexpr int lanes = 2;
    static constexpr int registers = 16;
    using Real = __m128d;
    using Bits = __m128i;

    static KERNEL_INLINE Real load(const double* p) { return _mm_loadu_pd(p); }
    static KERNEL_INLINE void store(double* p, Real x) { _mm_storeu_pd(p, x); }
    // Past the caches, to an aligned address; fence() orders such stores before what follows.
    static KERNEL_INLINE void stream(double* p, Real x) { _mm_stream_pd(p, x); }
    static KERNEL_INLINE void fence() { _mm_sfence(); }
    static KERNEL_INLINE Real set(double x) { return _mm_set1_pd(x); }
    static KERNEL_INLINE Real add(Real a, Real b) { return _mm_add_pd(a, b); }
    static KERNEL_INLINE Real sub(Real a, Real b) { return _mm_sub_pd(a, b); }
    static KERNEL_INLINE Real mul(Real a, Real b) { return _mm_mul_pd(a, b); }
    static KERNEL_INLINE Real div(Real a, Real b) { return _mm_div_pd(a, b); }
    // a * b + c, a * b - c, c - a * b
    static KERNEL_INLINE Real mul_add(Real a, Real b, Real c) { return _mm_macc_pd(a, b, c); }
    static KERNEL_INLINE Real mul_sub(Real a, Real b, Real c) { return _mm_msub_pd(a, b, c); }
    static KERNEL_INLINE Real neg_mul_add(Real a, Real b, Real c) { return _mm_nmacc_pd(a, b, c); }

    // To the nearest integer, ties to even; |x| <= 2^52.
    static KERNEL_INLINE Real round(Real x) {
        return _mm_round_pd(x, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
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
    static KERNEL_INLINE Real reverse(Real x) { return _mm_permute_pd(x, 1); }
    // Lanes reversed inside each range [2^q, 2^(q+1)); lane 0 stays.
    static KERNEL_INLINE Real reverse_ranges(Real x) { return x; }
    // Lane 0 of b, the other lanes of a.
    static KERNEL_INLINE Real replace_first(Real a, Real b) { return _mm_blend_pd(a, b, 1); }
    static KERNEL_INLINE void transpose(Real (&x)[2]) {
        const Real t = _mm_unpacklo_pd(x[0], x[1]);
        x[1] = _mm_unpackhi_pd(x[0], x[1]);
        x[0] = t;
    }

    // The twiddle factors of `lanes` successive indices, from groups of four doubles (two cosines, two
    // sines) that lie 16 doubles apart.
    static KERNEL_INLINE void load_twiddle(const double* group, Real& cosine, Real& sine) {
        cosine = load(group);
        sine = load(group + 2);
    }
    static KERNEL_INLINE void load_two_twiddles(const double* groups, Real& c0, Real& s0, Real& c1,
                                                Real& s1) {
        load_twiddle(groups, c0, s0);
        load_twiddle(groups + 4, c1, s1);
    }

    static KERNEL_INLINE Bits bits(Real x) { return _mm_castpd_si128(x); }
    static KERNEL_INLINE Real reals(Bits x) { return _mm_castsi128_pd(x); }
    static KERNEL_INLINE Bits set_bits(std::uint64_t x) { return _mm_set1_epi64x(static_cast<long long>(x)); }
    static KERNEL_INLINE Bits add(Bits a, Bits b) { return _mm_add_epi64(a, b); }
    static KERNEL_INLINE Bits sub(Bits a, Bits b) { return _mm_sub_epi64(a, b); }
    static KERNEL_INLINE Bits bit_and(Bits a, Bits b) { return _mm_and_si128(a, b); }
    static KERNEL_INLINE Bits bit_or(Bits a, Bits b) { return _mm_or_si128(a, b); }
    template <int Count>
    static KERNEL_INLINE Bits shift_left(Bits a) {
        return _mm_slli_epi64(a, Count);
    }
    template <int Count>
    static KERNEL_INLINE Bits shift_right(Bits a) {
        return _mm_srli_epi64(a, Count);
    }
    // Fixes where a value is computed: compilers otherwise put off sums until registers run out.
    static KERNEL_INLINE void pin(Real& x) { asm("" : "+x"(x)); }
    static KERNEL_INLINE void pin(Bits& x) { asm("" : "+x"(x)); }
    // Whether any bit of x is also one of mask.
    static KERNEL_INLINE bool any(Bits x, Bits mask) { return _mm_testz_si128(x, mask) == 0; }
    // The larger of `largest` and x or, where x is negative, not x, as signed numbers; largest >= 0.
    static KERNEL_INLINE Bits larger_magnitude(Bits largest, Bits x) {
        const Bits size = _mm_xor_si128(x, _mm_cmpgt_epi64(_mm_setzero_si128(), x));
        return _mm_blendv_epi8(largest, size, _mm_cmpgt_epi64(size, largest));
    }
    // previous, current as one row of lanes: the lanes one (two) before those of `current`.
    static KERNEL_INLINE Bits shift_one_lane(Bits previous, Bits current) {
        return _mm_alignr_epi8(current, previous, 8);
    }
    static KERNEL_INLINE Bits shift_two_lanes(Bits previous, Bits) { return previous; }
    static KERNEL_INLINE void store(std::uint64_t* p, Bits x) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), x);
    }
    static KERNEL_INLINE Bits load(const std::uint64_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static KERNEL_INLINE void transpose(Bits (&x)[2]) {
        const Bits t = _mm_unpacklo_epi64(x[0], x[1]);
        x[1] = _mm_unpackhi_epi64(x[0], x[1]);
        x[0] = t;
    }

    // Elements [First, First + lanes) of a group of 16 points of Width bits: the even points and the odd
    // ones, as doubles less 2^(Width - 1).
    template <int Width, int First>
    static KERNEL_INLINE void load_points(const unsigned char* source, Real& even, Real& odd) {
        constexpr int position = 2 * First * Width;
        const Bits raw = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + position / 8));
        even = fields<Width, position % 8, 0>(raw);
        odd = fields<Width, position % 8, 1>(raw);
    }

    // Two neighbouring fields of FirstBytes and SecondBytes bytes (0 to 6; the second one starts at byte 6)
    // of each of `lanes` points, `stride` bytes apart, as doubles. Reads 16 bytes of each point.
    template <int FirstBytes, int SecondBytes>
    static KERNEL_INLINE void load_fields(const unsigned char* source, std::uint64_t stride, Real& first,
                                          Real& second) {
        static constexpr FieldBytes<FirstBytes, SecondBytes> bytes{};
        const Bits pick = _mm_load_si128(reinterpret_cast<const __m128i*>(bytes.bytes));
        const Bits low = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source)), pick);
        const Bits high =
            _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source + stride)), pick);
        first = small_integers(_mm_unpacklo_epi64(low, high));
        if constexpr (SecondBytes > 0) second = small_integers(_mm_unpackhi_epi64(low, high));
    }

  private:
    // Integers below 2^52 to doubles.
    static KERNEL_INLINE Real small_integers(Bits x) {
        return sub(_mm_castsi128_pd(bit_or(x, set_bits(0x4330000000000000))), set(0x1p52));
    }

    template <int Width, int Offset, int Parity>
    static KERNEL_INLINE Real fields(Bits raw) {
        const auto& pick = field_pick_fma4<Width, Offset, Parity>;
        const Bits chosen =
            _mm_shuffle_epi8(raw, _mm_load_si128(reinterpret_cast<const __m128i*>(pick.bytes)));
        const Bits field =
            bit_and(_mm_shl_epi64(chosen, _mm_load_si128(reinterpret_cast<const __m128i*>(pick.counts))),
                    set_bits((std::uint64_t{1} << Width) - 1));
        return sub(_mm_castsi128_pd(bit_or(field, set_bits(0x4330000000000000))),
                   set(0x1p52 + static_cast<double>(1 << (Width - 1))));
    }
};

}  // namespace
