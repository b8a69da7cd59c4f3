// Residues to the bytes of the product, a row of eight points at a time.
//
// 1. The coefficient of each point (lanes are neighbouring points) as a sum of limbs, each a signed number
//    of some 52 bits at its position: sum of t(i) * P / prime[i], less the multiple of P next to it.
// 2. The pieces of neighbouring points are added where they overlap, before any carry: limb r of a point
//    receives limb r of its own coefficient, limb r of the middle piece of the point before and, r being 0,
//    the high piece of the one before that.
// 3. One pass of carries through the limbs of a point and one carry into the next point. As a rule that
//    stays in the lowest limb; where it does not, settle() carries on until nothing moves.
// 4. What the last two points have above the row's end is the spill.
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

// Limbs and their biases for a number of primes.
template <std::uint32_t Primes>
struct LimbPlan {
    static constexpr std::uint32_t piece = qmp::vst::limbs_per_piece(Primes);
    static constexpr bool high_limb = Primes % 2 != 0;  // the high piece is the topmost limb

    static constexpr std::uint32_t width(std::uint32_t limb) { return qmp::vst::limb_width(Primes, limb); }

    // Bit pattern of 1.5 * 2^exponent.
    static constexpr std::uint64_t pattern(std::uint32_t exponent) {
        return (std::uint64_t{0x3ff} + exponent) << 52 | std::uint64_t{1} << 51;
    }
    // 1.5 * 2^52, less the bias of the carry that arrives in this limb of a point.
    static constexpr double low_magic(std::uint32_t limb) {
        return limb == 0 || limb >= piece ? 0x1.8p52 : 0x1.8p52 - static_cast<double>(carry_bias(limb - 1));
    }
    // 1.5 * 2^(52 + width): the last bit is worth one of the next limb.
    static constexpr double high_magic(std::uint32_t limb) {
        return width(limb) == 48 ? 0x1.8p100 : 0x1.8p76;
    }

    static constexpr std::uint64_t limb_bias(std::uint32_t limb) {
        return pattern(52) + (limb == 0 ? 0 : pattern(52 + width(limb - 1)));
    }
    static constexpr std::uint64_t high_bias = high_limb ? limb_bias(Primes - 1) : 0;
    static constexpr std::uint64_t point_bias(std::uint32_t r) {
        return limb_bias(r) + limb_bias(piece + r) + (r == 0 ? high_bias : 0);
    }
    static constexpr std::uint64_t carry_bias(std::uint32_t r) { return point_bias(r) >> width(r); }
    static constexpr std::uint64_t last_carry_bias = carry_bias(piece - 1);

    // With sums between -2^54 and 2^54 a biased sum is not negative and does not wrap.
    static constexpr bool biases_fit() {
        for (std::uint32_t r = 0; r < piece; ++r) {
            const std::uint64_t bias = point_bias(r);
            if (bias % (std::uint64_t{1} << 48) != 0) return false;
            if (bias < std::uint64_t{1} << 54 || bias > 0 - (std::uint64_t{1} << 54)) return false;
        }
        return true;
    }
};

constexpr std::uint64_t mask48 = (std::uint64_t{1} << 48) - 1;

template <typename V, std::uint32_t Primes>
class TileMerger {
    using Real = typename V::Real;
    using Bits = typename V::Bits;
    using Plan = LimbPlan<Primes>;
    static constexpr std::uint32_t piece = Plan::piece;
    static constexpr std::uint64_t columns = qmp::vst::tile_columns;
    static constexpr std::uint64_t point_bytes = qmp::vst::point_bytes_of(Primes);
    // Limbs whose sums are formed at the same time, as many as the registers hold.
    static constexpr std::uint32_t group = V::lanes == 8 ? (Primes == 9 ? 3 : 4) : 2;
    static_assert(Plan::biases_fit());

  public:
    TileMerger(const qmp::vst::MergeConstants& constants, const qmp::vst::MergeTile& tile)
        : constants_(constants), tile_(tile), largest_(V::set_bits(0)) {}

    double run() {
        for (std::uint64_t r = 0; r < tile_.rows; ++r) merge_row(r);
        std::uint64_t sizes[V::lanes];
        V::store(sizes, largest_);
        std::uint64_t largest = 0;
        for (const std::uint64_t size : sizes) largest = size > largest ? size : largest;
        constexpr double half_unit = static_cast<double>(std::uint64_t{1} << (4 * (Primes - 1)));
        double result = static_cast<double>(static_cast<std::int64_t>(largest)) + 1;
        for (int i = 0; i < 12; ++i) result *= half_unit;  // 2^(48 (Primes - 1))
        return result;
    }

  private:
    // A coefficient's limbs, biased; the high piece in one number.
    struct Limbs {
        Bits low[piece], middle[piece], high;
    };
    // Of the vector before in the row.
    struct Before {
        Bits middle[piece], high, carry;
    };

    KERNEL_INLINE void merge_row(std::uint64_t row) {
        const double* residues = tile_.residues + row * tile_.row_stride;
        Before before;
#pragma GCC unroll 4
        for (std::uint32_t r = 0; r < piece; ++r) before.middle[r] = V::set_bits(Plan::limb_bias(piece + r));
        before.high = V::set_bits(Plan::high_bias);
        before.carry = V::set_bits(0);
        for (std::uint64_t j = 0; j < columns; j += V::lanes) {
            merge_vector(residues + j, j, before);
        }
#pragma GCC unroll 4
        for (std::uint32_t r = 0; r < piece; ++r) V::store(middle_[r], before.middle[r]);
        V::store(high_, before.high);
        V::store(carry_, before.carry);
        store_bytes(tile_.out + row * tile_.out_stride);
        store_spill(tile_.spills + row * tile_.spill_stride);
    }

    KERNEL_INLINE void merge_vector(const double* residues, std::uint64_t column, Before& before) {
        Limbs limbs;
        coefficients(residues, limbs);
        note_size(limbs);

        Bits point[piece];
#pragma GCC unroll 4
        for (std::uint32_t r = 0; r < piece; ++r) {
            point[r] = V::add(limbs.low[r], V::shift_one_lane(before.middle[r], limbs.middle[r]));
            before.middle[r] = limbs.middle[r];
        }
        point[0] = V::add(point[0], V::shift_two_lanes(before.high, limbs.high));
        before.high = limbs.high;

        Bits carry = V::template shift_right<48>(point[0]);
        carry_through<1>(point, carry);
        carry = V::sub(carry, V::set_bits(Plan::last_carry_bias));
        point[0] = V::add(V::bit_and(point[0], V::set_bits(mask48)), V::shift_one_lane(before.carry, carry));
        if (__builtin_expect(V::any(point[0], V::set_bits(~mask48)), 0)) settle(point, carry);
        before.carry = carry;
#pragma GCC unroll 4
        for (std::uint32_t r = 0; r < piece; ++r) V::store(point_[r] + column, point[r]);
    }

    template <std::uint32_t R>
    static KERNEL_INLINE void carry_through(Bits (&point)[piece], Bits& carry) {
        if constexpr (R < piece) {
            point[R] = V::add(point[R], carry);
            carry = V::template shift_right<Plan::width(R)>(point[R]);
            carry_through<R + 1>(point, carry);
        }
    }

    // --- Coefficients ---

    KERNEL_INLINE void coefficients(const double* residues, Limbs& limbs) const {
        Real t[Primes];
        Real turns = V::set(0);
#pragma GCC unroll 16
        for (std::uint32_t i = 0; i < Primes; ++i) {
            const Real x = V::load(residues + i * tile_.prime_stride);
            const Real inverse = V::set(constants_.inverse[i]);
            t[i] = V::neg_mul_add(V::round(V::mul(x, inverse)), V::set(constants_.prime[i]), x);
            turns = i == 0 ? V::mul(t[i], inverse) : V::mul_add(t[i], inverse, turns);
        }
        Bits upper;
        limb_group<0>(t, V::round(turns), limbs, upper);
    }

    // Limbs First and up, into `limbs`. `upper`: the upper part of limb First - 1, on return of the topmost.
    template <std::uint32_t First>
    KERNEL_INLINE void limb_group(const Real (&t)[Primes], Real turns, Limbs& limbs, Bits& upper) const {
        constexpr std::uint32_t count = Primes - First < group ? Primes - First : group;
        Real sum[count], low[count];
#pragma GCC unroll 4
        for (std::uint32_t g = 0; g < count; ++g) {
            sum[g] = V::set(Plan::high_magic(First + g));
            low[g] = V::set(Plan::low_magic(First + g));
        }
#pragma GCC unroll 16
        for (std::uint32_t i = 0; i < Primes; ++i) {
#pragma GCC unroll 4
            for (std::uint32_t g = 0; g < count; ++g) {
                const Real cofactor = V::set(constants_.cofactor[i][First + g]);
                const Real next = V::mul_add(t[i], cofactor, sum[g]);
                low[g] = V::add(low[g], V::mul_sub(t[i], cofactor, V::sub(next, sum[g])));
                sum[g] = next;
            }
        }
#pragma GCC unroll 4
        for (std::uint32_t g = 0; g < count; ++g) {
            constexpr std::uint32_t topmost = Primes - 1;
            const std::uint32_t limb = First + g;
            low[g] = V::neg_mul_add(turns, V::set(constants_.product[limb]), low[g]);
            if (limb == topmost) sum[g] = V::neg_mul_add(turns, V::set(constants_.product[Primes]), sum[g]);
            const Bits value = limb == 0 ? V::bits(low[g]) : V::add(V::bits(low[g]), upper);
            upper = V::bits(sum[g]);
            (limb < piece       ? limbs.low[limb]
             : limb < 2 * piece ? limbs.middle[limb - piece]
                                : limbs.high) = value;
        }
        if constexpr (First + count < Primes) {
            limb_group<First + count>(t, turns, limbs, upper);
        } else if constexpr (Plan::high_limb) {
            limbs.high = V::add(limbs.high, V::template shift_left<48>(upper));
        } else {
            limbs.high = V::template shift_left<24>(upper);
        }
    }

    // Magnitudes in units of the high piece: that piece and the carry of the limb below, once as it stands.
    KERNEL_INLINE void note_size(const Limbs& limbs) {
        constexpr std::uint32_t last = 2 * piece - 1;
        constexpr std::uint64_t bias = Plan::high_bias + (Plan::limb_bias(last) >> Plan::width(last - piece));
        const Bits below = V::template shift_right<Plan::width(last - piece)>(limbs.middle[piece - 1]);
        largest_ = V::larger_magnitude(largest_, V::sub(V::add(limbs.high, below), V::set_bits(bias)));
    }

    // --- Carries beyond the first limb ---

    // Signed numbers above -2^62.
    template <std::uint32_t Count>
    static KERNEL_INLINE Bits signed_shift_right(Bits x) {
        constexpr std::uint64_t offset = std::uint64_t{1} << 62;
        return V::sub(V::template shift_right<Count>(V::add(x, V::set_bits(offset))),
                      V::set_bits(offset >> Count));
    }

    template <std::uint32_t R>
    static KERNEL_INLINE void normalize(Bits (&point)[piece], Bits& carry) {
        if constexpr (R < piece) {
            const Bits sum = V::add(point[R], carry);
            point[R] = V::bit_and(sum, V::set_bits((std::uint64_t{1} << Plan::width(R)) - 1));
            carry = signed_shift_right<Plan::width(R)>(sum);
            normalize<R + 1>(point, carry);
        }
    }

    // `carry`: what has left each point; only the last lane's counts from here on.
    static __attribute__((noinline)) void settle(Bits (&point)[piece], Bits& carry) {
        for (std::uint32_t r = 1; r < piece; ++r) {
            point[r] = V::bit_and(point[r], V::set_bits((std::uint64_t{1} << Plan::width(r)) - 1));
        }
        do {
            Bits moving = V::set_bits(0);
            normalize<0>(point, moving);
            carry = V::add(carry, moving);
            point[0] = V::add(point[0], V::shift_one_lane(V::set_bits(0), moving));
        } while (V::any(point[0], V::set_bits(~mask48)));
    }

    // --- Output ---

    // In ascending order: what a store writes beyond its limb is overwritten by the next.
    KERNEL_INLINE void store_bytes(unsigned char* out) const {
#pragma GCC unroll 8
        for (std::uint64_t j = 0; j < columns; ++j) {
#pragma GCC unroll 4
            for (std::uint32_t r = 0; r < piece; ++r) {
                const bool last = j == columns - 1 && r == piece - 1;
                __builtin_memcpy(out + j * point_bytes + r * 6, &point_[r][j], last ? Plan::width(r) / 8 : 8);
            }
        }
    }

    KERNEL_INLINE void store_spill(std::uint64_t* spill) const {
        constexpr std::uint64_t last = V::lanes - 1;
        using Wide = __int128;
        Wide sum = static_cast<Wide>(without(high_[last - 1], Plan::high_bias)) +
                   static_cast<std::int64_t>(carry_[last]);
        std::uint32_t words = 0;
#pragma GCC unroll 8
        for (std::uint32_t r = 0; r <= piece; ++r) {
            // Limbs of the last point's middle piece, then its high piece.
            const std::uint32_t position = r < piece ? 48 * r : 24 * (Primes - 1);
            if (position >= 64 * (words + 1)) {
                spill[words++] = static_cast<std::uint64_t>(sum);
                sum >>= 64;
            }
            const std::int64_t limb = r < piece ? without(middle_[r][last], Plan::limb_bias(piece + r))
                                                : without(high_[last], Plan::high_bias);
            sum += static_cast<Wide>(limb) << (position - 64 * words);
        }
#pragma GCC unroll 4
        for (; words < qmp::vst::spill_words; sum >>= 64) spill[words++] = static_cast<std::uint64_t>(sum);
    }
    static KERNEL_INLINE std::int64_t without(std::uint64_t biased, std::uint64_t bias) {
        return static_cast<std::int64_t>(biased - bias);
    }

    const qmp::vst::MergeConstants& constants_;
    const qmp::vst::MergeTile tile_;
    Bits largest_;
    // The row's limbs, and of its last vector what lies above its end.
    alignas(64) std::uint64_t point_[piece][columns];
    alignas(64) std::uint64_t middle_[piece][V::lanes], high_[V::lanes], carry_[V::lanes];
};

template <typename V, std::uint32_t Primes>
double merge(const qmp::vst::MergeConstants& constants, const qmp::vst::MergeTile& tile) {
    return TileMerger<V, Primes>(constants, tile).run();
}

}  // namespace
