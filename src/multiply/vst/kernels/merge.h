// Residues to the bytes of the product, a row of eight points at a time.
//
// 1. The coefficient of each point (lanes are neighbouring points) as a sum of limbs, each a signed number
//    a few bits longer than its width, in its position: the sum of t(i) * P / prime[i], less the multiple of
//    P next to it (double_limbs.h).
// 2. The pieces of neighbouring points are added where they overlap, before any carry: limb r of a point
//    receives limb r of its own coefficient, limb r of the middle piece of the point before and, r being 0,
//    the high piece of the one before that.
// 3. One pass of carries through the limbs of a point and one carry into the next point. As a rule that
//    stays in the lowest limb; where it does not, settle() carries on until nothing moves.
// 4. What the last two points have above the row's end is the spill.
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"
#include "multiply/vst/kernels/kernels.h"

namespace {

// Limbs: how coefficients are formed, and the widths and biases of their limbs.
template <typename Limbs>
class TileMerger {
    using V = typename Limbs::Vector;
    using Bits = typename V::Bits;
    static constexpr std::uint32_t piece = Limbs::piece;
    static constexpr std::uint64_t columns = qmp::vst::tile_columns;
    static constexpr std::uint64_t point_bytes = qmp::vst::point_bytes_of(Limbs::primes);
    static constexpr std::uint64_t ones(std::uint32_t bits) { return (std::uint64_t{1} << bits) - 1; }

  public:
    TileMerger(const qmp::vst::MergeConstants& constants, const qmp::vst::MergeTile& tile)
        : constants_(constants), tile_(tile), largest_(V::set_bits(0)) {}

    double run() {
        // A row is stored while the next one is under way.
        for (std::uint64_t r = 0; r < tile_.rows; ++r) {
            merge_row(r);
            if (r > 0) store_row(r - 1);
        }
        if (tile_.rows > 0) store_row(tile_.rows - 1);
        return largest();
    }

  private:
    // Of the vector before in the row: what its coefficients have above its points.
    struct Before {
        Bits middle[piece], high, carry;
    };
    // The points of a row, and what the last vector leaves.
    struct Row {
        alignas(64) std::uint64_t point[piece][columns];
        alignas(64) std::uint64_t middle[piece][V::lanes];
        alignas(64) std::uint64_t high[V::lanes];
        alignas(64) std::uint64_t carry[V::lanes];
    };

    // Where the next tile's part of the same row will go.
    static KERNEL_INLINE void call_for_next(const unsigned char* out) {
        KERNEL_UNROLL(16)
        for (std::uint64_t i = 0; i < columns * point_bytes; i += 64) {
            __builtin_prefetch(out + columns * point_bytes + i, 1, 2);
        }
    }

    KERNEL_INLINE void merge_row(std::uint64_t r) {
        const double* residues = tile_.residues + r * tile_.row_stride;
        Row& row = rows_[r % 2];
        call_for_next(tile_.out + r * tile_.out_stride);
        Before before;
        KERNEL_UNROLL(4)
        for (std::uint32_t i = 0; i < piece; ++i) before.middle[i] = V::set_bits(Limbs::middle_bias(i));
        before.high = V::set_bits(Limbs::high_bias);
        before.carry = V::set_bits(0);
        for (std::uint64_t j = 0; j < columns; j += V::lanes) {
            merge_vector(residues + j, tile_.out + r * tile_.out_stride, j, before, row);
        }
        KERNEL_UNROLL(4)
        for (std::uint32_t i = 0; i < piece; ++i) V::store(row.middle[i], before.middle[i]);
        V::store(row.high, before.high);
        V::store(row.carry, before.carry);
    }

    // Limbs of 48 bits each, where there are instructions that pack them.
    static constexpr bool stores_vectors =
        Limbs::primes % 2 != 0 && requires(unsigned char* out, const Bits (&point)[piece]) {
        V::template store_limbs<piece>(out, point);
    };

    KERNEL_INLINE void merge_vector(const double* residues, [[maybe_unused]] unsigned char* out,
                                    std::uint64_t column, Before& before, [[maybe_unused]] Row& row) {
        Bits point[piece], middle[piece], high;
        Limbs::form(constants_, residues, tile_.prime_stride, point, middle, high);
        note_size(middle[piece - 1], high);
        KERNEL_UNROLL(4)
        for (std::uint32_t i = 0; i < piece; ++i) {
            point[i] = V::add(point[i], V::shift_one_lane(before.middle[i], middle[i]));
            before.middle[i] = middle[i];
        }
        point[0] = V::add(point[0], V::shift_two_lanes(before.high, high));
        before.high = high;

        Bits carry = Limbs::template carry_of<Limbs::width(0)>(point[0]);
        carry_through<1>(point, carry);
        carry = V::sub(carry, V::set_bits(Limbs::last_carry_bias));
        constexpr std::uint64_t mask = ones(Limbs::width(0));
        point[0] = V::add(V::bit_and(point[0], V::set_bits(mask)), V::shift_one_lane(before.carry, carry));
        if (__builtin_expect(V::any(point[0], V::set_bits(~mask)), 0)) settle(point, carry);
        before.carry = carry;
        if constexpr (stores_vectors) {
            V::template store_limbs<piece>(out + column * point_bytes, point);
        } else {
            KERNEL_UNROLL(4)
            for (std::uint32_t i = 0; i < piece; ++i) V::store(row.point[i] + column, point[i]);
        }
    }

    template <std::uint32_t R>
    static KERNEL_INLINE void carry_through(Bits (&point)[piece], Bits& carry) {
        if constexpr (R < piece) {
            point[R] = V::add(point[R], carry);
            carry = Limbs::template carry_of<Limbs::width(R)>(point[R]);
            carry_through<R + 1>(point, carry);
        }
    }

    // --- Sizes: in units of the high piece, that piece and the carry of the limb below it as it stands ---

    KERNEL_INLINE void note_size(Bits below, Bits high) {
        constexpr std::uint32_t width = Limbs::width(piece - 1);
        constexpr std::uint64_t bias = Limbs::high_bias + (Limbs::middle_bias(piece - 1) >> width);
        const Bits sum = V::add(high, Limbs::template carry_of<width>(below));
        largest_ = V::larger_magnitude(largest_, V::sub(sum, V::set_bits(bias)));
    }
    double largest() const {
        std::uint64_t sizes[V::lanes];
        V::store(sizes, largest_);
        std::uint64_t largest = 0;
        for (const std::uint64_t size : sizes) largest = size > largest ? size : largest;
        double result = static_cast<double>(static_cast<std::int64_t>(largest)) + 1;
        for (std::uint32_t i = 1; i < Limbs::primes; ++i) result *= 0x1p48;
        return result;
    }

    // --- Carries beyond the first limb ---

    // Numbers above -2^62.
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
            point[R] = V::bit_and(sum, V::set_bits(ones(Limbs::width(R))));
            carry = signed_shift_right<Limbs::width(R)>(sum);
            normalize<R + 1>(point, carry);
        }
    }

    // `carry`: what has left each point; only the last lane's counts from here on.
    static __attribute__((noinline)) void settle(Bits (&point)[piece], Bits& carry) {
        for (std::uint32_t r = 1; r < piece; ++r) {
            point[r] = V::bit_and(point[r], V::set_bits(ones(Limbs::width(r))));
        }
        do {
            Bits moving = V::set_bits(0);
            normalize<0>(point, moving);
            carry = V::add(carry, moving);
            point[0] = V::add(point[0], V::shift_one_lane(V::set_bits(0), moving));
        } while (V::any(point[0], V::set_bits(~ones(Limbs::width(0)))));
    }

    // --- Output ---

    KERNEL_INLINE void store_row(std::uint64_t r) const {
        const Row& row = rows_[r % 2];
        if constexpr (!stores_vectors) store_bytes(tile_.out + r * tile_.out_stride, row);
        store_spill(tile_.spills + r * tile_.spill_stride, row);
    }

    // In ascending order: what a store writes beyond its limb is overwritten by the next.
    static KERNEL_INLINE void store_bytes(unsigned char* out, const Row& row) {
        constexpr std::uint64_t last_bytes = point_bytes - 6 * (piece - 1);
        KERNEL_UNROLL(8)
        for (std::uint64_t j = 0; j < columns; ++j) {
            KERNEL_UNROLL(4)
            for (std::uint32_t i = 0; i < piece; ++i) {
                const bool last = j == columns - 1 && i == piece - 1;
                __builtin_memcpy(out + j * point_bytes + 6 * i, &row.point[i][j], last ? last_bytes : 8);
            }
        }
    }

    static KERNEL_INLINE void store_spill(std::uint64_t* spill, const Row& row) {
        using Wide = __int128;
        constexpr std::uint64_t last = V::lanes - 1;
        const std::int64_t high = without(row.high[last], Limbs::high_bias);
        Wide sum = static_cast<Wide>(without(row.high[last - 1], Limbs::high_bias)) +
                   static_cast<std::int64_t>(row.carry[last]);
        std::uint32_t words = 0;
        KERNEL_UNROLL(8)
        for (std::uint32_t i = 0; i <= piece; ++i) {
            // Limbs of the last point's middle piece, then its high piece.
            const std::uint32_t position = i < piece ? Limbs::width(0) * i : 24 * (Limbs::primes - 1);
            if (position >= 64 * (words + 1)) {
                spill[words++] = static_cast<std::uint64_t>(sum);
                sum >>= 64;
            }
            const std::int64_t limb = i < piece ? without(row.middle[i][last], Limbs::middle_bias(i)) : high;
            sum += static_cast<Wide>(limb) << (position - 64 * words);
        }
        KERNEL_UNROLL(4)
        for (; words < qmp::vst::spill_words; sum >>= 64) spill[words++] = static_cast<std::uint64_t>(sum);
    }
    static KERNEL_INLINE std::int64_t without(std::uint64_t biased, std::uint64_t bias) {
        return static_cast<std::int64_t>(biased - bias);
    }

    const qmp::vst::MergeConstants& constants_;
    const qmp::vst::MergeTile tile_;
    Bits largest_;
    Row rows_[2];
};

template <typename Limbs>
double merge(const qmp::vst::MergeConstants& constants, const qmp::vst::MergeTile& tile) {
    return TileMerger<Limbs>(constants, tile).run();
}

}  // namespace
