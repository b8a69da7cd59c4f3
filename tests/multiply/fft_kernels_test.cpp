// The convolutions by themselves: every multiplier, every point size, every level, against the schoolbook.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "errors/exception.h"
#include "multiply/fft/size_tables.h"
#include "multiply/fft/transform.h"
#include "support/fatal.h"
#include "support/levels.h"
#include "support/random_words.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::Pattern;
using kelvara_test::Random;
using qmp::ParallelContext;
using qmp::Word;
using qmp::fft::FftParams;
using qmp::fft::make_params;
using qmp::fft::Plan;
using qmp::fft::TwiddleTable;
using Words = std::vector<Word>;

double* doubles_of(GuardedWords& words) {
    return reinterpret_cast<double*>(words.data());
}

// A table and its memory.
struct OwnTable {
    GuardedWords memory;
    TwiddleTable table;

    OwnTable(std::uint32_t r, std::uint32_t k)
        : memory(TwiddleTable::doubles(r, k)),
          table(r, k, doubles_of(memory), ParallelContext::sequential()) {}
};

// a * b modulo 2^(64 * words) - 1, all ones standing for zero only where the sum comes out like that.
Words fold(const Words& product, std::uint64_t words) {
    Words result(words, 0);
    const auto add = [&](std::uint64_t at, Word value) {
        while (value != 0) {
            result[at] += value;
            value = result[at] < value ? 1 : 0;
            at = (at + 1) % words;
        }
    };
    for (std::size_t i = 0; i < product.size(); ++i) add(i % words, product[i]);
    return result;
}

Words convolve(const FftParams& params, const TwiddleTable& table, const Words& a, const Words& b) {
    const ParallelContext one = ParallelContext::sequential();
    const Plan plan(params, table);
    GuardedWords x(params.points), y(params.points), words(params.capacity_bits / 64),
        carries(params.points / 64);
    split_points(one, plan, doubles_of(x), a.data(), 8 * a.size());
    split_points(one, plan, doubles_of(y), b.data(), 8 * b.size());
    forward_transform(one, plan, doubles_of(x));
    forward_transform(one, plan, doubles_of(y));
    const double shift = coefficient_shift(plan, doubles_of(x), doubles_of(y));
    const Words kept = y.value();
    pointwise_product(one, plan, doubles_of(x), doubles_of(y));
    EXPECT_EQ(y.value(), kept);
    inverse_transform(one, plan, doubles_of(x));
    merge_points(one, plan, words.data(), carries.data(), doubles_of(x), shift);
    EXPECT_TRUE(x.guards_intact() && y.guards_intact() && words.guards_intact() && carries.guards_intact());
    return words.value();
}

// Largest distance of a coefficient from the nearest integer, for two operands that fill the convolution.
double rounding_error(const FftParams& params, const TwiddleTable& table, const Words& a, const Words& b) {
    const ParallelContext one = ParallelContext::sequential();
    const Plan plan(params, table);
    std::vector<double> x(params.points), y(params.points);
    split_points(one, plan, x.data(), a.data(), 8 * a.size());
    split_points(one, plan, y.data(), b.data(), 8 * b.size());
    forward_transform(one, plan, x.data());
    forward_transform(one, plan, y.data());
    pointwise_product(one, plan, x.data(), y.data());
    inverse_transform(one, plan, x.data());
    double largest = 0.0;
    for (double value : x) {
        const double coefficient = value * table.scale(64 + params.k);
        largest = std::max(largest, std::fabs(coefficient - std::nearbyint(coefficient)));
    }
    return largest;
}

class FftKernels : public kelvara_test::LevelTest {};
INSTANTIATE_EVERY_LEVEL(FftKernels);

// Convolutions of operands that fill it wrap around; those of half operands do not.
TEST_P(FftKernels, EveryMultiplierAndPointSize) {
    Random random(1);
    for (std::uint32_t r : {1u, 3u, 5u, 7u}) {
        for (std::uint32_t k : {7u, 8u, 9u}) {
            const OwnTable own(r, k);
            for (std::uint64_t b = 9; b <= 21; ++b) {
                const FftParams params = make_params(r, k, b);
                // The table's precision limit (size_tables.cpp).
                if (params.points << (2 * b - 2) > std::uint64_t{1} << 47) continue;
                const std::uint64_t words = params.capacity_bits / 64;
                for (Pattern pattern : {Pattern::uniform, Pattern::ones, Pattern::runs}) {
                    const Words x = make_words(random, words, pattern);
                    const Words y = make_words(random, words / 2, pattern);
                    const Words expected = kelvara_test::reference_product(x, y);
                    ASSERT_EQ(convolve(params, own.table, x, y), fold(expected, words))
                        << r << " * 2^" << k << " x " << b;
                }
                const Words x = make_words(random, words - words / 3), y = make_words(random, words / 3);
                ASSERT_EQ(convolve(params, own.table, x, y), kelvara_test::reference_product(x, y));
            }
        }
    }
}

// Lengths below the tables, down to the shortest that the passes can cut.
TEST_P(FftKernels, ShortTransforms) {
    Random random(2);
    for (std::uint32_t r : {1u, 3u, 5u, 7u}) {
        for (std::uint32_t k : {4u, 5u, 6u}) {
            const OwnTable own(r, k);
            for (std::uint64_t b : {16u, 20u}) {
                const FftParams params = make_params(r, k, b);
                if (params.points % qmp::fft::kernel_block(b) != 0) continue;
                const std::uint64_t words = params.capacity_bits / 64;
                for (Pattern pattern : kelvara_test::all_patterns) {
                    const Words x = make_words(random, words, pattern),
                                y = make_words(random, words, pattern);
                    ASSERT_EQ(convolve(params, own.table, x, y),
                              fold(kelvara_test::reference_product(x, y), words))
                        << r << " * 2^" << k << " x " << b;
                }
            }
        }
    }
}

// Every operand length in bytes around the ends of groups, blocks and the operand itself.
TEST_P(FftKernels, OperandsOfAnyLength) {
    Random random(3);
    const OwnTable own(3, 7);
    const FftParams params = make_params(3, 7, 19);
    const Words y = make_words(random, 3);
    for (std::uint64_t words = 1; words <= params.capacity_bits / 64 - 3; ++words) {
        const Words x = make_words(random, words, words % 2 ? Pattern::ones : Pattern::uniform);
        Words expected = kelvara_test::reference_product(x, y);
        expected.resize(params.capacity_bits / 64, 0);
        ASSERT_EQ(convolve(params, own.table, x, y), expected) << words;
    }
}

TEST_P(FftKernels, SquaresAreProducts) {
    Random random(4);
    for (std::uint32_t r : {1u, 3u, 5u, 7u}) {
        const OwnTable own(r, 10);
        const FftParams params = make_params(r, 10, 16);
        const Plan plan(params, own.table);
        const ParallelContext one = ParallelContext::sequential();
        const Words x = make_words(random, params.capacity_bits / 64 / 2, Pattern::runs);
        GuardedWords a(params.points), words(params.capacity_bits / 64), carries(params.points / 64);
        split_points(one, plan, doubles_of(a), x.data(), 8 * x.size());
        forward_transform(one, plan, doubles_of(a));
        const double shift = coefficient_shift(plan, doubles_of(a), doubles_of(a));
        pointwise_product(one, plan, doubles_of(a), doubles_of(a));
        inverse_transform(one, plan, doubles_of(a));
        merge_points(one, plan, words.data(), carries.data(), doubles_of(a), shift);
        EXPECT_EQ(words.value(), kelvara_test::reference_product(x, x));
    }
}

// What NUMERICS.md says has been observed: the patterns that come out worst stay far below one half.
TEST_P(FftKernels, RoundingErrorStaysFarBelowOneHalf) {
    Random random(5);
    std::map<std::uint32_t, OwnTable> tables;
    double largest = 0.0;
    for (const FftParams& params : qmp::fft::size_table) {
        if (params.points > std::uint64_t{1} << 15) break;
        // The lengths of one multiplier come in any order: each gets the table of the longest.
        const TwiddleTable& table = tables.try_emplace(params.r, params.r, 15).first->second.table;
        const std::uint64_t words = params.capacity_bits / 64;
        for (Pattern pattern : {Pattern::ones, Pattern::uniform, Pattern::runs}) {
            const Words x = make_words(random, words / 2, pattern),
                        y = make_words(random, words / 2, pattern);
            const double error = rounding_error(params, table, x, y);
            EXPECT_LT(error, 0.125) << params.r << " * 2^" << params.k << " x " << params.b;
            largest = std::max(largest, error);
        }
    }
    EXPECT_GT(largest, 0.0);  // the figure is one that varies
    RecordProperty("largest_rounding_error", std::to_string(largest));
}

TEST(FftLevels, TheKernelsAreThoseOfTheCurrentLevel) {
    kelvara_test::for_every_level([](qmp::InstructionLevel level) {
        EXPECT_STREQ(qmp::fft::level_for(10).kernels->name, qmp::name_of(level));
    });
}

// Too short for the widest vectors: a level of two lanes, the current one where it has two.
TEST(FftLevels, ShortTransformsHaveTwoLanes) {
    kelvara_test::for_every_level([](qmp::InstructionLevel level) {
        const bool wide = level == qmp::InstructionLevel::avx512 || level == qmp::InstructionLevel::avx2;
        for (std::uint32_t k : {4u, 5u, 6u}) {
            const qmp::fft::Kernels& kernels = *qmp::fft::level_for(k).kernels;
            EXPECT_EQ(kernels.lanes(), 2);
            EXPECT_STREQ(kernels.name, wide ? "SSE2" : qmp::name_of(level));
        }
    });
}

TEST(FftPlan, KernelBlocks) {
    EXPECT_EQ(qmp::fft::kernel_block(16), 16u);
    EXPECT_EQ(qmp::fft::kernel_block(20), 64u);
    for (std::uint64_t b : {9, 10, 11, 12, 13, 14, 15, 17, 18, 19, 21}) {
        EXPECT_EQ(qmp::fft::kernel_block(b), 128u);
    }
    EXPECT_EQ(qmp::fft::kernel_block(8), 0u);
    EXPECT_EQ(qmp::fft::kernel_block(22), 0u);
}

// The sums that the merge makes of the largest coefficients, to the last bit: whole pairs of the widest
// points that have them fill 64 bits at the longest length and go beyond with any longer one.
TEST(FftPlan, PairsOfCoefficientsFit) {
    for (std::uint64_t b = 12; b <= qmp::fft::widest_whole_pair; ++b) {
        const unsigned __int128 points = static_cast<unsigned __int128>(1) << (64 - 3 * b);
        EXPECT_TRUE(qmp::fft::pairs_fit(b, std::uint64_t{1} << (64 - 3 * b)));
        EXPECT_FALSE(qmp::fft::pairs_fit(b, (std::uint64_t{1} << (64 - 3 * b)) + 1));
        const unsigned __int128 digit = (1u << b) - 1, coefficient = points * digit * digit;
        const unsigned __int128 pair = coefficient + (coefficient << b);
        unsigned __int128 carry = 0;
        for (int i = 0; i < 64; ++i) carry = (pair + carry) >> (2 * b);
        EXPECT_EQ((pair + carry) >> 64, 0u) << b;
        EXPECT_NE((2 * pair) >> 64, 0u) << b;
    }
    for (std::uint64_t b = qmp::fft::widest_whole_pair + 1; b <= 21; ++b) {
        EXPECT_TRUE(qmp::fft::pairs_fit(b, std::uint64_t{1} << 30));
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(FftPlanDeathTest, Misuse) {
    const OwnTable three(3, 9), one(1, 9), long_one(1, 17);
    const char* message = "Invalid Function Parameters:";
    // An unknown point size, a length that is no multiple of the kernel's block, an exponent below 4, an
    // unknown multiplier, a table of another multiplier, one that is too short, and a length at which a pair
    // of coefficients does not fit a word.
    EXPECT_CRASH(Plan(make_params(1, 7, 8), one.table), message);
    EXPECT_CRASH(Plan(make_params(1, 7, 22), one.table), message);
    EXPECT_CRASH(Plan(make_params(1, 6, 17), one.table), message);
    EXPECT_CRASH(Plan(make_params(1, 5, 20), one.table), message);
    EXPECT_CRASH(Plan(make_params(1, 3, 16), one.table), message);
    EXPECT_CRASH(Plan(make_params(2, 7, 16), one.table), message);
    EXPECT_CRASH(Plan(make_params(1, 7, 16), three.table), message);
    EXPECT_CRASH(Plan(make_params(1, 10, 16), one.table), message);
    EXPECT_CRASH(Plan(make_params(1, 17, 16), long_one.table), message);
}
#endif

}  // namespace
