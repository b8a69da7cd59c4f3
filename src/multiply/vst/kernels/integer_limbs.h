// Coefficients from residues where vectors have 64-bit integer products: limbs of up to 60 bits.
//
// Of a sum of products t * cofactor limb the integer unit gives the lowest 64 bits exactly. A sum of doubles
// that starts from a magic number gives it too, but for less than 2^63, as a multiple of the limb's unit: the
// upper part. The lower part is the difference of the two, modulo 2^64. Three operations a product instead
// of four, and a quarter fewer limbs where 60 or 56 bits fit the point; the topmost limb needs no upper part
// at all.
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"
#include "multiply/vst/kernels/double_limbs.h"
#include "multiply/vst/kernels/kernels.h"

namespace {

template <typename V, std::uint32_t Primes>
class IntegerLimbs {
    using Real = typename V::Real;
    using Bits = typename V::Bits;

  public:
    using Vector = V;
    static constexpr std::uint32_t primes = Primes;
    static constexpr std::uint32_t piece = qmp::vst::wide_limbs_per_piece(Primes);
    static constexpr std::uint32_t width(std::uint32_t) { return qmp::vst::wide_limb_width(Primes); }

    static constexpr std::uint64_t middle_bias(std::uint32_t) { return 0; }
    static constexpr std::uint64_t high_bias = 0;
    static constexpr std::uint64_t last_carry_bias = 0;

    template <std::uint32_t Width>
    static KERNEL_INLINE Bits carry_of(Bits limb) {
        return V::template signed_shift_right<Width>(limb);
    }
    // Limbs of 60 bits are put together to 64 before they are stored.
    static constexpr std::uint64_t store_step = width(0) == 60 ? 8 : width(0) / 8;
    static KERNEL_INLINE void pack(Bits (&point)[piece]) {
        if constexpr (width(0) == 60) {
            static_assert(piece == 2);
            point[0] = V::bit_or(point[0], V::template shift_left<60>(point[1]));
            point[1] = V::template shift_right<4>(point[1]);
        }
    }

    static KERNEL_INLINE void form(const qmp::vst::MergeConstants& constants, const double* residues,
                                   std::uint64_t prime_stride, Bits (&low)[piece], Bits (&middle)[piece],
                                   Bits& high) {
        Real t[Primes];
        const Real turns = V::round(DoubleLimbs<V, Primes>::balance(constants, residues, prime_stride, t));
        Bits integer[Primes];
#pragma GCC unroll 16
        for (std::uint32_t i = 0; i < Primes; ++i) integer[i] = V::to_integers(t[i]);
        const Factors factors{t, integer, turns, V::to_integers(turns)};
        Bits upper;
        form_group<0>(constants, factors, low, middle, upper);

        constexpr std::uint32_t topmost = 2 * piece;
        high = V::add(upper, V::set_bits(0 - pattern));
#pragma GCC unroll 16
        for (std::uint32_t i = 0; i < Primes; ++i) {
            high = V::add(high, V::mul(integer[i], V::set_bits(constants.wide_cofactor[i][topmost])));
        }
        high = V::sub(high, V::mul(factors.integer_turns, V::set_bits(constants.wide_product[topmost])));
    }

  private:
    static constexpr std::uint32_t group = Primes == 9 ? 2 : 3;

    // 1.5 * 2^(52 + width), whose last bit is worth one of the next limb, and its bit pattern.
    static constexpr double magic =
        0x1.8p52 * static_cast<double>(std::uint64_t{1} << qmp::vst::wide_limb_width(Primes));
    static constexpr std::uint64_t pattern =
        (std::uint64_t{0x3ff + 52} + qmp::vst::wide_limb_width(Primes)) << 52 | std::uint64_t{1} << 51;
    // The multiple of P goes into the upper parts, too, where otherwise two limbs could exceed 63 bits.
    static constexpr bool turns_inside = qmp::vst::wide_limb_width(Primes) == 60;

    struct Factors {
        const Real (&t)[Primes];
        const Bits (&integer)[Primes];
        Real turns;
        Bits integer_turns;
    };

    // Limbs First and up of the two lower pieces. `upper`: the upper part of the limb before, biased.
    template <std::uint32_t First>
    static KERNEL_INLINE void form_group(const qmp::vst::MergeConstants& constants, const Factors& factors,
                                         Bits (&low)[piece], Bits (&middle)[piece], Bits& upper) {
        constexpr std::uint32_t count = 2 * piece - First < group ? 2 * piece - First : group;
        Real sum[count];
        Bits lowest[count];
#pragma GCC unroll 4
        for (std::uint32_t g = 0; g < count; ++g) {
            sum[g] = V::set(magic);
            lowest[g] = V::set_bits(First + g == 0 ? 0 : 0 - pattern);  // the bias of `upper`
        }
#pragma GCC unroll 16
        for (std::uint32_t i = 0; i < Primes; ++i) {
#pragma GCC unroll 4
            for (std::uint32_t g = 0; g < count; ++g) {
                const Bits cofactor = V::set_bits(constants.wide_cofactor[i][First + g]);
                sum[g] =
                    V::mul_add(factors.t[i], V::set(constants.wide_cofactor_rounded[i][First + g]), sum[g]);
                lowest[g] = V::add(lowest[g], V::mul(factors.integer[i], cofactor));
            }
        }
#pragma GCC unroll 4
        for (std::uint32_t g = 0; g < count; ++g) {
            const std::uint32_t limb = First + g;
            if (turns_inside) {
                sum[g] = V::neg_mul_add(factors.turns, V::set(constants.wide_product_rounded[limb]), sum[g]);
            }
            lowest[g] =
                V::sub(lowest[g], V::mul(factors.integer_turns, V::set_bits(constants.wide_product[limb])));
            // The magic number's bits leave the word.
            Bits value = V::sub(lowest[g], V::template shift_left<wide_width>(V::bits(sum[g])));
            if (limb > 0) value = V::add(value, upper);
            upper = V::bits(sum[g]);
            (limb < piece ? low[limb] : middle[limb - piece]) = value;
        }
        if constexpr (First + count < 2 * piece) {
            form_group<First + count>(constants, factors, low, middle, upper);
        }
    }
    static constexpr int wide_width = static_cast<int>(qmp::vst::wide_limb_width(Primes));
};

}  // namespace
