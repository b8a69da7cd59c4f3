// The plan of one conversion from radix 2^64 to a base B: how the digits are halved, and the powers of B
// that the halves are split by.
//
// m digit words are halved, rounding up, while they are at least 16: `levels` times, to `leaf` words. A node
// of level j has between leaf 2^j + 1 and leaf 2^(j+1) digit words; its fraction times P_j = B^(leaf 2^j)
// splits off the first leaf 2^j of them. Every P_j is transformed once and serves all nodes of its level.
//
// Guard words. A node of level j with m digit words takes the top words(m) + 2 (j + 2) words of its
// fraction, where words(m) > m log2(B) / 64 > words(m) - 1; level -1 is the basecase. What its fractional
// product keeps for the low half lies above every word that this cut could make wrong:
// words(m) + 2 (j + 2) - words(s) >= words(m - s) + 2 (j + 1) + 1. So each level costs less than one unit
// in the last word, and the basecase starts with at least two guard words.
//
// Short convolutions. P = P' 2^(64 z): the lowest z words of P are zero, for B = 10^19 three in ten. So the
// top z words of the fraction only reach the integer part of the product, and n = words(m) + 2 (j + 2) - z
// words of it are multiplied by P'. By the inequality above the words that are kept, with one more below
// them, and the words of P' are together at most n: a cyclic convolution of n words is enough. The words of
// the product beyond it, part of the integer part, wrap around to words that are not kept, all of them below
// the one more.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "multiply/multiply_context.h"
#include "multiply/transform_parameters.h"
#include "multiply/word.h"
#include "radix/convert_basecase.h"
#include "radix/radix_power.h"

namespace qmp {

class ConvertPlanP {
  public:
    // status() of a plan for a base below 2, which has no levels and converts nothing.
    static constexpr std::uint32_t invalid_base = ~std::uint32_t{2};

    // One level of the recursion.
    struct Level {
        std::uint64_t output_words = 0;  // leaf 2^j: the digit words of its power
        std::uint64_t power_length = 0;  // words of the power without its low zero words
        std::uint64_t power_zeros = 0;   // and the number of those
        // Its products are formed whole, from the power's words: the shortest levels.
        bool schoolbook = false;
        Word* table = nullptr;  // the power, transformed or as it is; only read
        TransformParametersBox parameters;

        std::uint64_t convolution_words() const { return parameters->convolution_words(); }
    };

    // Sizes only. Throws LimitExceededException where a product is beyond the multiplication's tables.
    ConvertPlanP(Word base, std::uint64_t m, std::uint64_t tasks);

    std::uint32_t status() const { return status_; }
    Word base() const { return base_; }
    std::uint64_t output_words() const { return m_; }
    std::uint64_t tasks() const { return tasks_; }
    int levels() const { return levels_; }
    std::uint64_t leaf() const { return leaf_; }
    const Level& level(int j) const { return table_[static_cast<std::size_t>(j)]; }
    // The halves of nodes from this level upward are converted in parallel.
    int parallel_level() const { return parallel_level_; }

    // Words of the fraction that a node of level j (-1: the basecase) takes for m digit words.
    std::uint64_t fraction_words(int j, std::uint64_t m) const;
    // What the whole conversion takes of its fraction.
    std::uint64_t fraction_words() const { return fraction_words(levels_ - 1, m_); }
    // Words of the low half's fraction at a node of level j, with room for the product's check words.
    std::uint64_t low_fraction_words(int j) const;
    // Words of a level's table.
    std::uint64_t level_table_words(int j) const;
    // Scratch words of a node's product at a schoolbook level.
    std::uint64_t whole_product_words(int j) const;
    // Scratch words of a node's product besides the transform's own: see exact_fractional_product().
    std::uint64_t exact_product_words(int j) const;
    // Scratch words of a node of level j, or of any below, with this many tasks.
    std::uint64_t node_scratch_words(int j, std::uint64_t tasks) const;

    // Words of the transformed powers, and scratch words of populate_fft_plans() and of the conversion.
    std::uint64_t table_words() const;
    std::uint64_t scratch_words() const;

    // Forms and transforms the powers, once in a plan's life; `tables` is 64-byte aligned, holds
    // table_words() and outlives the plan.
    void populate_fft_plans(const MultiplyContext& context, Word* tables);

  private:
    std::uint64_t population_scratch_words() const;
    std::uint64_t power_buffer_capacity() const;
    void take_power(int j, const RadixPower& power, Word* table);
    void fill_table(const MultiplyContext& context, int j, const RadixPower& power);
    RadixPower fill_table_and_square(const MultiplyContext& context, int j, const RadixPower& power,
                                     Word* destination);

    Word base_;
    double base_bits_ = 0;
    std::uint64_t m_;
    std::uint64_t tasks_;
    std::uint32_t status_ = 0;
    int levels_ = 0;
    std::uint64_t leaf_ = 0;
    int parallel_level_ = 0;
    std::array<Level, 48> table_;
    // Levels whose table is filled, or about to be. Whoever fills one finds the one below done, and nobody
    // else at it.
    std::atomic<int> taken_{0};
};

}  // namespace qmp
