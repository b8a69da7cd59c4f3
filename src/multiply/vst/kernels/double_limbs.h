// Coefficients from residues in double precision: limbs of 48 bits.
//
// Every product t * cofactor limb (below 2^96) is cut at the limb's unit: fused into a sum that starts from a
// magic number, whose last bit is worth the unit, it leaves its upper part there; what is missing is exact
// and added up separately. NUMERICS_CONVERSION.md has the ranges.
//
// Integers come out of the doubles as the bits of x + 1.5 * 2^e. What such a bit pattern has too much, its
// bias, is a multiple of 2^48: it stays in place through additions, makes logical shifts do for signed ones,
// and never touches the 48 bits that are stored. A carry's bias is known beforehand and taken off where the
// next limb starts from.
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"
#include "multiply/vst/kernels/kernels.h"

namespace {

template <typename V, std::uint32_t Primes>
class DoubleLimbs {
    using Real = typename V::Real;
    using Bits = typename V::Bits;

    // Bit pattern of 1.5 * 2^exponent.
    static constexpr std::uint64_t pattern(std::uint32_t exponent) {
        return (std::uint64_t{0x3ff} + exponent) << 52 | std::uint64_t{1} << 51;
    }

  public:
    using Vector = V;
    static constexpr std::uint32_t primes = Primes;
    static constexpr std::uint32_t piece = qmp::vst::limbs_per_piece(Primes);
    static constexpr std::uint32_t width(std::uint32_t limb) { return qmp::vst::limb_width(Primes, limb); }
    static constexpr std::uint64_t high_bias = Primes % 2 != 0 ? pattern(52) + pattern(100) : 0;

  private:
    static constexpr std::uint64_t limb_bias(std::uint32_t limb) {
        return pattern(52) + (limb == 0 ? 0 : pattern(52 + width(limb - 1)));
    }
    static constexpr std::uint64_t point_bias(std::uint32_t r) {
        return limb_bias(r) + limb_bias(piece + r) + (r == 0 ? high_bias : 0);
    }
    static constexpr std::uint64_t carry_bias(std::uint32_t r) { return point_bias(r) >> width(r); }

    // With sums between -2^54 and 2^54 a biased sum is not negative and does not wrap.
    static constexpr bool biases_fit() {
        for (std::uint32_t r = 0; r < piece; ++r) {
            const std::uint64_t bias = point_bias(r);
            if (bias % (std::uint64_t{1} << 48) != 0) return false;
            if (bias < std::uint64_t{1} << 54 || bias > 0 - (std::uint64_t{1} << 54)) return false;
        }
        return true;
    }

    // 1.5 * 2^52, less the bias of the carry that arrives in this limb of a point.
    static constexpr double low_magic(std::uint32_t limb) {
        return limb == 0 || limb >= piece ? 0x1.8p52 : 0x1.8p52 - static_cast<double>(carry_bias(limb - 1));
    }
    // 1.5 * 2^(52 + width): the last bit is worth one of the next limb.
    static constexpr double high_magic(std::uint32_t limb) {
        return width(limb) == 48 ? 0x1.8p100 : 0x1.8p76;
    }

  public:
    static constexpr std::uint64_t middle_bias(std::uint32_t r) { return limb_bias(piece + r); }
    static constexpr std::uint64_t last_carry_bias = carry_bias(piece - 1);

    // What a limb of a point hands on, biased.
    template <std::uint32_t Width>
    static KERNEL_INLINE Bits carry_of(Bits limb) {
        return V::template shift_right<Width>(limb);
    }

    static KERNEL_INLINE void form(const qmp::vst::MergeConstants& constants, const double* residues,
                                   std::uint64_t prime_stride, Bits (&low)[piece], Bits (&middle)[piece],
                                   Bits& high) {
        Real t[Primes];
        const Real turns = V::round(balance(constants, residues, prime_stride, t));
        Bits upper;
        form_group<0>(constants, t, turns, low, middle, high, upper);
    }

    // The least representatives t(i), and the sum of t(i) / prime(i).
    static KERNEL_INLINE Real balance(const qmp::vst::MergeConstants& constants, const double* residues,
                                      std::uint64_t prime_stride, Real (&t)[Primes]) {
        Real turns = V::set(0);
        KERNEL_UNROLL(16)
        for (std::uint32_t i = 0; i < Primes; ++i) {
            const Real x = V::load(residues + i * prime_stride);
            const Real inverse = V::set(constants.inverse[i]);
            t[i] = V::neg_mul_add(V::rounded_product(x, inverse), V::set(constants.prime[i]), x);
            turns = i == 0 ? V::mul(t[i], inverse) : V::mul_add(t[i], inverse, turns);
        }
        return turns;
    }

  private:
    // Limbs whose sums are formed at the same time, as many as the registers hold.
    static constexpr std::uint32_t group = V::lanes == 2 ? 2 : Primes % 3 == 0 ? 3 : 4;

    // Limbs First and up. `upper`: the upper part of limb First - 1, biased.
    template <std::uint32_t First>
    static KERNEL_INLINE void form_group(const qmp::vst::MergeConstants& constants, const Real (&t)[Primes],
                                         Real turns, Bits (&low)[piece], Bits (&middle)[piece], Bits& high,
                                         Bits& upper) {
        static_assert(biases_fit());
        constexpr std::uint32_t count = Primes - First < group ? Primes - First : group;
        Real sum[count], rest[count];
        KERNEL_UNROLL(4)
        for (std::uint32_t g = 0; g < count; ++g) {
            sum[g] = V::set(high_magic(First + g));
            rest[g] = V::set(low_magic(First + g));
        }
        KERNEL_UNROLL(16)
        for (std::uint32_t i = 0; i < Primes; ++i) {
            KERNEL_UNROLL(4)
            for (std::uint32_t g = 0; g < count; ++g) {
                const Real cofactor = V::set(constants.cofactor[i][First + g]);
                const Real next = V::mul_add(t[i], cofactor, sum[g]);
                rest[g] = V::add(rest[g], V::mul_sub(t[i], cofactor, V::sub(next, sum[g])));
                V::pin(rest[g]);
                sum[g] = next;
            }
        }
        KERNEL_UNROLL(4)
        for (std::uint32_t g = 0; g < count; ++g) {
            constexpr std::uint32_t topmost = Primes - 1;
            const std::uint32_t limb = First + g;
            rest[g] = V::neg_mul_add(turns, V::set(constants.product[limb]), rest[g]);
            if (limb == topmost) sum[g] = V::neg_mul_add(turns, V::set(constants.product[Primes]), sum[g]);
            const Bits value = limb == 0 ? V::bits(rest[g]) : V::add(V::bits(rest[g]), upper);
            upper = V::bits(sum[g]);
            (limb < piece ? low[limb] : limb < 2 * piece ? middle[limb - piece] : high) = value;
        }
        if constexpr (First + count < Primes) {
            form_group<First + count>(constants, t, turns, low, middle, high, upper);
        } else if constexpr (Primes % 2 != 0) {
            high = V::add(high, V::template shift_left<48>(upper));
        } else {
            high =
                V::template shift_left<24>(upper);  // the topmost limb is the middle piece's last, of 24 bits
        }
    }
};

}  // namespace
