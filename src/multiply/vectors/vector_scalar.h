// Two lanes of plain doubles: the level that needs no instruction set and that every other is compared with.
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"

namespace {

struct VectorScalar {
    static constexpr int lanes = 2;
    static constexpr int registers = 16;
    struct Real {
        double low, high;
    };
    struct Bits {
        std::uint64_t low, high;
    };

    static KERNEL_INLINE Real load(const double* p) { return {p[0], p[1]}; }
    static KERNEL_INLINE void store(double* p, Real x) {
        p[0] = x.low;
        p[1] = x.high;
    }
    static KERNEL_INLINE Real set(double x) { return {x, x}; }
    // As the other types' stores past the caches.
    static KERNEL_INLINE void stream(double* p, Real x) { store(p, x); }
    static KERNEL_INLINE void fence() {}
    static KERNEL_INLINE Real add(Real a, Real b) { return {a.low + b.low, a.high + b.high}; }
    static KERNEL_INLINE Real sub(Real a, Real b) { return {a.low - b.low, a.high - b.high}; }
    static KERNEL_INLINE Real mul(Real a, Real b) { return {a.low * b.low, a.high * b.high}; }
    static KERNEL_INLINE Real div(Real a, Real b) { return {a.low / b.low, a.high / b.high}; }
    // a * b + c, a * b - c, c - a * b
    static KERNEL_INLINE Real mul_add(Real a, Real b, Real c) { return add(mul(a, b), c); }
    static KERNEL_INLINE Real mul_sub(Real a, Real b, Real c) { return sub(mul(a, b), c); }
    static KERNEL_INLINE Real neg_mul_add(Real a, Real b, Real c) { return sub(c, mul(a, b)); }

    // To the nearest integer, ties to even; |x| <= 2^52.
    static KERNEL_INLINE Real round(Real x) {
        const Real unit = {__builtin_copysign(0x1p52, x.low), __builtin_copysign(0x1p52, x.high)};
        return sub(add(x, unit), unit);
    }

    // Lane order reversed.
    static KERNEL_INLINE Real reverse(Real x) { return {x.high, x.low}; }
    // Lanes reversed inside each range [2^q, 2^(q+1)); lane 0 stays.
    static KERNEL_INLINE Real reverse_ranges(Real x) { return x; }
    // Lane 0 of b, the other lanes of a.
    static KERNEL_INLINE Real replace_first(Real a, Real b) { return {b.low, a.high}; }
    static KERNEL_INLINE void transpose(Real (&x)[2]) {
        const double t = x[0].high;
        x[0].high = x[1].low;
        x[1].low = t;
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

    static KERNEL_INLINE Bits bits(Real x) {
        Bits r;
        __builtin_memcpy(&r, &x, sizeof r);
        return r;
    }
    static KERNEL_INLINE Real reals(Bits x) {
        Real r;
        __builtin_memcpy(&r, &x, sizeof r);
        return r;
    }
    static KERNEL_INLINE Bits set_bits(std::uint64_t x) { return {x, x}; }
    static KERNEL_INLINE Bits add(Bits a, Bits b) { return {a.low + b.low, a.high + b.high}; }
    static KERNEL_INLINE Bits sub(Bits a, Bits b) { return {a.low - b.low, a.high - b.high}; }
    static KERNEL_INLINE Bits bit_and(Bits a, Bits b) { return {a.low & b.low, a.high & b.high}; }
    static KERNEL_INLINE Bits bit_or(Bits a, Bits b) { return {a.low | b.low, a.high | b.high}; }
    template <int Count>
    static KERNEL_INLINE Bits shift_left(Bits a) {
        return {a.low << Count, a.high << Count};
    }
    template <int Count>
    static KERNEL_INLINE Bits shift_right(Bits a) {
        return {a.low >> Count, a.high >> Count};
    }
    // Fixes where a value is computed: compilers otherwise put off sums until registers run out.
    static KERNEL_INLINE void pin(Real&) {}
    static KERNEL_INLINE void pin(Bits&) {}
    // Whether any bit of x is also one of mask.
    static KERNEL_INLINE bool any(Bits x, Bits mask) {
        return ((x.low & mask.low) | (x.high & mask.high)) != 0;
    }
    // The larger of `largest` and x or, where x is negative, not x, as signed numbers; largest >= 0.
    static KERNEL_INLINE Bits larger_magnitude(Bits largest, Bits x) {
        const std::uint64_t low = (x.low >> 63) != 0 ? ~x.low : x.low;
        const std::uint64_t high = (x.high >> 63) != 0 ? ~x.high : x.high;
        return {low > largest.low ? low : largest.low, high > largest.high ? high : largest.high};
    }
    // previous, current as one row of lanes: the lanes one (two) before those of `current`.
    static KERNEL_INLINE Bits shift_one_lane(Bits previous, Bits current) {
        return {previous.high, current.low};
    }
    static KERNEL_INLINE Bits shift_two_lanes(Bits previous, Bits) { return previous; }
    static KERNEL_INLINE void store(std::uint64_t* p, Bits x) { __builtin_memcpy(p, &x, sizeof x); }
    static KERNEL_INLINE Bits load(const std::uint64_t* p) {
        Bits r;
        __builtin_memcpy(&r, p, sizeof r);
        return r;
    }
    static KERNEL_INLINE void transpose(Bits (&x)[2]) {
        const std::uint64_t t = x[0].high;
        x[0].high = x[1].low;
        x[1].low = t;
    }

    // Elements [First, First + lanes) of a group of 16 points of Width bits: the even points and the odd
    // ones, as doubles less 2^(Width - 1).
    template <int Width, int First>
    static KERNEL_INLINE void load_points(const unsigned char* source, Real& even, Real& odd) {
        constexpr int position = 2 * First * Width;
        even = {field<Width, position>(source), field<Width, position + 2 * Width>(source)};
        odd = {field<Width, position + Width>(source), field<Width, position + 3 * Width>(source)};
    }

    // Two neighbouring fields of FirstBytes and SecondBytes bytes (0 to 6; the second one starts at byte 6)
    // of each of `lanes` points, `stride` bytes apart, as doubles. Reads 16 bytes of each point.
    template <int FirstBytes, int SecondBytes>
    static KERNEL_INLINE void load_fields(const unsigned char* source, std::uint64_t stride, Real& first,
                                          Real& second) {
        first = {byte_field<FirstBytes>(source), byte_field<FirstBytes>(source + stride)};
        if constexpr (SecondBytes > 0) {
            second = {byte_field<SecondBytes>(source + 6), byte_field<SecondBytes>(source + stride + 6)};
        }
    }

  private:
    template <int Bytes>
    static KERNEL_INLINE double byte_field(const unsigned char* source) {
        std::uint64_t word;
        __builtin_memcpy(&word, source, sizeof word);
        return static_cast<double>(static_cast<std::int64_t>(word & ((std::uint64_t{1} << (8 * Bytes)) - 1)));
    }
    template <int Width, int Position>
    static KERNEL_INLINE double field(const unsigned char* source) {
        std::uint64_t word;
        __builtin_memcpy(&word, source + Position / 8, sizeof word);
        word = (word >> (Position % 8)) & ((std::uint64_t{1} << Width) - 1);
        return static_cast<double>(static_cast<std::int64_t>(word) - (std::int64_t{1} << (Width - 1)));
    }
};

}  // namespace
