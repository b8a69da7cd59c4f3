// Coefficients to words: round, carry, and pack the digits of Width bits.
//
// A block of 64 coefficients gives exactly Width words and a carry into the next block. Each lane works on
// a block of its own, so the chain of carries runs in all lanes at once; the carries between blocks are
// added later (transform.cpp).
//
// A coefficient is the integer nearest to value * scale + shift. It comes out of one multiply-add with
// 2^52 + 2^51 + shift, whose sum lies in [2^52, 2^53), where the last mantissa bit is worth one: the
// exact coefficient, which is never negative and less than 2^51, is then in the low 51 mantissa bits.
//
// The chain of carries is what takes time, an addition and a shift for every link. So it is one of pairs of
// coefficients, even + odd * 2^Width. Points of up to 16 bits leave room for whole pairs in 64 bits
// (pairs_fit(), kernels.h). Of wider ones the pair takes the lowest digit of its odd coefficient, and the
// rest goes to the pair after it: even + 2^Width * digit + rest + carry < 2^51 + 2^42 + 2^34 + 2^34.
#pragma once

#include <cstdint>

#include "multiply/fft/kernels/complex.h"
#include "multiply/fft/kernels/kernels.h"

namespace {

constexpr std::uint64_t points_per_block = 64;

template <typename V, int Width>
class BlockMerger {
  public:
    static constexpr int lanes = V::lanes;

    BlockMerger(double scale, double offset)
        : scale_(V::set(scale)),
          offset_(V::set(offset)),
          coefficient_mask_(V::set_bits((std::uint64_t{1} << 51) - 1)),
          digit_mask_(V::set_bits((std::uint64_t{1} << Width) - 1)),
          pair_mask_(V::set_bits((std::uint64_t{1} << pair_width) - 1)),
          rest_(V::set_bits(0)),
          carry_(V::set_bits(0)),
          word_(V::set_bits(0)) {}

    // `rows[l]`: the 64 coefficients of lane l.
    KERNEL_INLINE void run(const double* const (&rows)[lanes]) { take_elements<0>(rows); }

    // Words of lane l to targets[l], for the lanes below `used`.
    KERNEL_INLINE void store_words(std::uint64_t* target, int used) {
        for (int i = 0;; i += lanes) {
            // The last square may overlap the one before: the same words twice.
            const int first = i + lanes <= Width ? i : Width - lanes;
            typename V::Bits square[lanes];
            KERNEL_UNROLL(8)
            for (int j = 0; j < lanes; ++j) square[j] = V::load(words_[first + j]);
            V::transpose(square);
            KERNEL_UNROLL(8)
            for (int l = 0; l < lanes; ++l) {
                if (l < used) V::store(target + l * Width + first, square[l]);
            }
            if (i + lanes >= Width) break;
        }
    }

    KERNEL_INLINE void store_carries(std::uint64_t* target, int used) {
        std::uint64_t carries[lanes];
        V::store(carries, V::add(carry_, rest_));
        for (int l = 0; l < used; ++l) target[l] = carries[l];
    }

  private:
    static constexpr int pair_width = 2 * Width;
    static constexpr bool whole_pairs = Width <= qmp::fft::widest_whole_pair;

    // Pairs of points (elements) First and up, `lanes` of each row at a time.
    template <int First>
    KERNEL_INLINE void take_elements(const double* const (&rows)[lanes]) {
        if constexpr (First < static_cast<int>(points_per_block / 2)) {
            typename V::Bits pairs[lanes], rests[lanes];
            KERNEL_UNROLL(8)
            for (int l = 0; l < lanes; ++l) {
                const auto even = coefficients(rows[l] + 2 * First);
                const auto odd = coefficients(rows[l] + 2 * First + lanes);
                if constexpr (whole_pairs) {
                    pairs[l] = V::add(even, V::template shift_left<Width>(odd));
                } else {
                    pairs[l] = V::add(even, V::template shift_left<Width>(V::bit_and(odd, digit_mask_)));
                    rests[l] = V::template shift_right<Width>(odd);
                }
            }
            V::transpose(pairs);
            if constexpr (!whole_pairs) V::transpose(rests);
            take_pairs<First, 0>(pairs, rests);
            take_elements<First + lanes>(rows);
        }
    }

    KERNEL_INLINE typename V::Bits coefficients(const double* values) const {
        return V::bit_and(V::bits(V::mul_add(V::load(values), scale_, offset_)), coefficient_mask_);
    }

    template <int First, int T>
    KERNEL_INLINE void take_pairs(const typename V::Bits (&pairs)[lanes],
                                  const typename V::Bits (&rests)[lanes]) {
        if constexpr (T < lanes) {
            if constexpr (whole_pairs) {
                take<First + T>(pairs[T]);
            } else {
                take<First + T>(V::add(pairs[T], rest_));
                rest_ = rests[T];
            }
            take_pairs<First, T + 1>(pairs, rests);
        }
    }

    template <int Pair>
    KERNEL_UNROLLED void take(typename V::Bits pair) {
        constexpr int position = Pair * pair_width;
        constexpr int word = position / 64;
        constexpr int offset = position % 64;
        carry_ = V::add(carry_, pair);
        const auto digits = V::bit_and(carry_, pair_mask_);
        carry_ = V::template shift_right<pair_width>(carry_);
        word_ = offset == 0 ? digits : V::bit_or(word_, V::template shift_left<offset>(digits));
        if constexpr (offset + pair_width >= 64) {
            V::store(words_[word], word_);
            if constexpr (offset + pair_width > 64) word_ = V::template shift_right<64 - offset>(digits);
        }
    }

    typename V::Real scale_, offset_;
    typename V::Bits coefficient_mask_, digit_mask_, pair_mask_, rest_, carry_, word_;
    alignas(64) std::uint64_t words_[Width][lanes];
};

// Blocks [begin, end) of the coefficients at `data`: block q gives words[q * Width ..) and carries[q].
template <typename V, int Width>
void merge(std::uint64_t* words, std::uint64_t* carries, const double* data, double scale, double offset,
           std::uint64_t begin, std::uint64_t end) {
    for (std::uint64_t block = begin; block < end; block += V::lanes) {
        const std::uint64_t left = end - block;
        const int used = left < V::lanes ? static_cast<int>(left) : V::lanes;
        const double* rows[V::lanes];
        for (int l = 0; l < V::lanes; ++l) {
            // Lanes without a block repeat the last one; what they produce is not stored.
            rows[l] = data + (block + static_cast<std::uint64_t>(l < used ? l : used - 1)) * points_per_block;
        }
        BlockMerger<V, Width> merger(scale, offset);
        merger.run(rows);
        merger.store_words(words + block * Width, used);
        merger.store_carries(carries + block, used);
    }
}

}  // namespace
