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
    // A whole row of limbs of 48 bits is stored at once.
    static constexpr bool stores_rows = V::lanes == qmp::vst::tile_columns && width(0) == 48;
    static KERNEL_INLINE void store_row(unsigned char* out, const Bits (&point)[piece]) {
        V::template store_limbs<piece>(out, point);
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
        Sums sums;
        KERNEL_UNROLL(16)
        for (std::uint32_t limb = 0; limb <= topmost; ++limb) {
            if (limb < topmost) sums.upper[limb] = V::set(magic);
            // The bias of the upper part of the limb below is taken off beforehand.
            sums.lowest[limb] = V::set_bits(limb == 0 ? 0 : 0 - pattern);
        }
        Real t[Primes];
        Real turns = V::set(0);
        KERNEL_UNROLL(16)
        for (std::uint32_t i = 0; i < Primes; ++i) {
            const Real x = V::load(residues + i * prime_stride);
            const Real inverse = V::set(constants.inverse[i]);
            t[i] = V::neg_mul_add(V::round(V::mul(x, inverse)), V::set(constants.prime[i]), x);
            V::pin(t[i]);
            turns = i == 0 ? V::mul(t[i], inverse) : V::mul_add(t[i], inverse, turns);
            V::pin(turns);
        }
        KERNEL_UNROLL(16)
        for (std::uint32_t i = 0; i < Primes; ++i) add_products(constants, i, t[i], sums);
        subtract_turns(constants, V::round(turns), sums);

        KERNEL_UNROLL(16)
        for (std::uint32_t limb = 0; limb <= topmost; ++limb) {
            Bits value = sums.lowest[limb];
            // The magic number's bits leave the word.
            if (limb < topmost)
                value = V::sub(value, V::template shift_left<wide_width>(V::bits(sums.upper[limb])));
            if (limb > 0) value = V::add(value, V::bits(sums.upper[limb - 1]));
            (limb < piece ? low[limb] : limb < topmost ? middle[limb - piece] : high) = value;
        }
    }

  private:
    static constexpr std::uint32_t topmost = 2 * piece;
    static constexpr int wide_width = static_cast<int>(qmp::vst::wide_limb_width(Primes));
    // 1.5 * 2^(52 + width), whose last bit is worth one of the next limb, and its bit pattern.
    static constexpr double magic = 0x1.8p52 * static_cast<double>(std::uint64_t{1} << wide_width);
    static constexpr std::uint64_t pattern = std::uint64_t{0x3ff + 52 + wide_width} << 52 | std::uint64_t{1}
                                                                                                << 51;
    // The multiple of P goes into the upper parts, too, where otherwise two limbs could exceed 63 bits.
    static constexpr bool turns_inside = wide_width == 60;

    // All limbs at once: there are registers for them.
    struct Sums {
        Real upper[topmost];
        Bits lowest[topmost + 1];
    };

    static KERNEL_INLINE void add_products(const qmp::vst::MergeConstants& constants, std::uint32_t i, Real t,
                                           Sums& sums) {
        const Bits integer = V::to_integers(t);
        KERNEL_UNROLL(16)
        for (std::uint32_t limb = 0; limb <= topmost; ++limb) {
            if (limb < topmost) {
                const Real rounded = V::set(constants.wide_cofactor_rounded[i][limb]);
                sums.upper[limb] = V::mul_add(t, rounded, sums.upper[limb]);
                V::pin(sums.upper[limb]);
            }
            const Bits cofactor = V::set_bits(constants.wide_cofactor[i][limb]);
            sums.lowest[limb] = V::add(sums.lowest[limb], V::mul(integer, cofactor));
            V::pin(sums.lowest[limb]);
        }
    }

    static KERNEL_INLINE void subtract_turns(const qmp::vst::MergeConstants& constants, Real turns,
                                             Sums& sums) {
        const Bits integer = V::to_integers(turns);
        KERNEL_UNROLL(16)
        for (std::uint32_t limb = 0; limb <= topmost; ++limb) {
            if (turns_inside && limb < topmost) {
                const Real rounded = V::set(constants.wide_product_rounded[limb]);
                sums.upper[limb] = V::neg_mul_add(turns, rounded, sums.upper[limb]);
            }
            const Bits product = V::set_bits(constants.wide_product[limb]);
            sums.lowest[limb] = V::sub(sums.lowest[limb], V::mul(integer, product));
            V::pin(sums.lowest[limb]);
        }
    }
};

}  // namespace
