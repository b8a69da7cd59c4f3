// Residues of Group vectors of moduli at a time, held by doubles as integers of either sign; each operation
// is done for all vectors before the next one, since a single chain would wait for its own results.
//
// Bounds are in units of the modulus and proved in NUMERICS.md.
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"
#include "multiply/vst/kernels/fused.h"

namespace {

// Adding it rounds |x| <= 2^51 to the nearest integer, which then stands in the lower bits.
constexpr double rounding_constant = 0x1.8p52;
constexpr std::uint64_t rounding_constant_bits = 0x4338000000000000;
constexpr int fraction_bits = 52;  // of a double

// What a vector type's multiply-add is good for.
template <typename V>
struct MultiplyAdd {
    using Real = typename V::Real;
    // Exponent bits that one reduction can take in.
    static constexpr int window = 2;
    static KERNEL_INLINE Real rounded_product(Real a, Real b) {
        return V::mul_add(a, b, V::set(rounding_constant));
    }
};
// A quotient needs no exact product, but has one rounding more.
template <typename V>
struct MultiplyAdd<Fused<V>> {
    using Real = typename V::Real;
    static constexpr int window = 1;
    static KERNEL_INLINE Real rounded_product(Real a, Real b) {
        return V::add(V::mul(a, b), V::set(rounding_constant));
    }
};

template <typename V, int Group>
struct Residues {
    using Real = typename V::Real;
    using Bits = typename V::Bits;
    using Quotient = MultiplyAdd<V>;

    Real modulus[Group];
    Real inverse[Group];
    Real value[Group];

    // value = start mod modulus, for powers of two up to 2^50 times the modulus.
    KERNEL_INLINE void begin(const Bits (&exponents)[Group]) {
        const Bits mask = V::set_bits(std::uint64_t{63} << fraction_bits);
        const Bits bias = V::set_bits(std::uint64_t{1023} << fraction_bits);
        KERNEL_UNROLL(8)
        for (int g = 0; g < Group; ++g) {
            const Real power = V::reals(V::add(V::bit_and(exponents[g], mask), bias));
            const Real quotient =
                V::sub(Quotient::rounded_product(power, inverse[g]), V::set(rounding_constant));
            value[g] = V::neg_mul_add(quotient, modulus[g], power);
        }
    }

    // value = value^2 * 2^s mod modulus, s being the lowest `Width` bits above the fraction's in exponents.
    template <int Width>
    KERNEL_INLINE void square(const Bits (&exponents)[Group]) {
        const Bits mask = V::set_bits(((std::uint64_t{1} << Width) - 1) << fraction_bits);
        Real high[Group], low[Group];
        KERNEL_UNROLL(8)
        for (int g = 0; g < Group; ++g) {
            Real scaled = value[g];
            if constexpr (Width > 0) {
                scaled = V::reals(V::add(V::bits(scaled), V::bit_and(exponents[g], mask)));
            }
            high[g] = V::mul(value[g], scaled);
            low[g] = V::mul_sub(value[g], scaled, high[g]);
        }
        KERNEL_UNROLL(8)
        for (int g = 0; g < Group; ++g) {
            const Real quotient =
                V::sub(Quotient::rounded_product(high[g], inverse[g]), V::set(rounding_constant));
            value[g] = V::add(V::neg_mul_add(quotient, modulus[g], high[g]), low[g]);
        }
    }

    // value = 2^e mod modulus for the exponents of a TermRun.
    KERNEL_INLINE void raise(Bits (&exponents)[Group], int squarings) {
        begin(exponents);
        if constexpr (Quotient::window == 1) {
            for (int i = 0; i < squarings; ++i) {
                shift<1>(exponents);
                square<1>(exponents);
            }
        } else {
            if (squarings % 2 != 0) {
                shift<1>(exponents);
                square<1>(exponents);
            }
            for (int i = 0; i < squarings / 2; ++i) {
                square<0>(exponents);
                shift<2>(exponents);
                square<2>(exponents);
            }
        }
    }

  private:
    template <int Count>
    static KERNEL_INLINE void shift(Bits (&exponents)[Group]) {
        KERNEL_UNROLL(8)
        for (int g = 0; g < Group; ++g) exponents[g] = V::template shift_left<Count>(exponents[g]);
    }
};

}  // namespace
