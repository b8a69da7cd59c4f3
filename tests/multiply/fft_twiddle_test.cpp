#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "errors/exception.h"
#include "multiply/fft/size_tables.h"
#include "multiply/fft/twiddle_table.h"
#include "multiply/fft/unit_roots.h"
#include "multiply/twiddle_set.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using qmp::ParallelContext;
using qmp::TwiddleSet;
using qmp::fft::TwiddleTable;

double* doubles_of(GuardedWords& words) {
    return reinterpret_cast<double*>(words.data());
}

// Distance in units of the value's last place, against extended precision.
double ulps(double value, long double exact) {
    const double rounded = static_cast<double>(exact);
    const double unit = std::nextafter(std::fabs(rounded), 2.0) - std::fabs(rounded);
    return static_cast<double>(std::fabs(static_cast<long double>(value) - exact) / unit);
}

constexpr long double two_pi = 6.283185307179586476925286766559005768L;

struct ExtendedRoot {
    long double cosine, sine;
};

// e^(2 pi i n / d) by the library's functions, from the nearest right angle: near the axes the angle
// itself would not be accurate enough.
ExtendedRoot reference_root(std::uint64_t n, std::uint64_t d) {
    const std::uint64_t quarter = (8 * n / d + 1) / 2;
    const long double rest = static_cast<long double>(4 * n) - static_cast<long double>(quarter * d);
    const long double angle = two_pi * rest / static_cast<long double>(4 * d);
    const long double c = std::cos(angle), s = std::sin(angle);
    switch (quarter % 4) {
        case 0:
            return {c, s};
        case 1:
            return {-s, c};
        case 2:
            return {-c, -s};
        default:
            return {s, -c};
    }
}

void expect_root(double cosine, double sine, std::uint64_t n, std::uint64_t d, double bound) {
    const ExtendedRoot exact = reference_root(n, d);
    if (4 * n % d == 0) {
        EXPECT_EQ(cosine, static_cast<double>(exact.cosine));
        EXPECT_EQ(sine, static_cast<double>(exact.sine));
    } else {
        ASSERT_LT(ulps(cosine, exact.cosine), bound) << n << "/" << d;
        ASSERT_LT(ulps(sine, exact.sine), bound) << n << "/" << d;
    }
}

TEST(UnitRoots, ExactAtRightAnglesAndCloseElsewhere) {
    for (std::uint64_t denominator : {8u, 24u, 40u, 56u, 1000u, 4096u, 40960u}) {
        const qmp::fft::UnitRoots roots(denominator);
        for (std::uint64_t n = 0; n < denominator; ++n) {
            const qmp::fft::UnitRoot root = roots(n);
            expect_root(root.cosine, root.sine, n, denominator, 0.51);
            const qmp::fft::UnitRoot single = qmp::fft::unit_root(n, denominator);
            expect_root(single.cosine, single.sine, n, denominator, 0.51);
        }
    }
}

class TwiddleTableTest : public testing::TestWithParam<std::uint32_t> {};

TEST_P(TwiddleTableTest, LevelBlocks) {
    const std::uint32_t r = GetParam();
    for (std::uint32_t k : {4u, 5u, 7u, 11u}) {
        GuardedWords memory(TwiddleTable::doubles(r, k));
        const TwiddleTable table(r, k, doubles_of(memory), ParallelContext::sequential());
        EXPECT_TRUE(memory.guards_intact());
        EXPECT_EQ(table.multiplier(), r);
        EXPECT_EQ(table.exponent(), k);
        for (std::uint32_t j = 0; j < 64; ++j) {
            if (j < 5 || j > k + 1) {
                EXPECT_EQ(table.level(j), nullptr);
                continue;
            }
            ASSERT_EQ(table.level(j), doubles_of(memory) + ((std::uint64_t{2} * r) << (j - 2)));
            const std::uint64_t circle = std::uint64_t{r} << j;
            constexpr std::uint64_t multipliers[4] = {0, 8, 4, 12};
            for (std::uint64_t i = 0; i < circle / 16; ++i) {
                for (std::uint64_t m = 0; m < 4; ++m) {
                    const double* group = table.level(j) + (i / 2) * 16 + 4 * m;
                    expect_root(group[i % 2], group[2 + i % 2], multipliers[m] * i, circle, 0.51);
                }
            }
            // Index 0 is 1 for every multiplier.
            for (int m = 0; m < 4; ++m) {
                EXPECT_EQ(table.level(j)[4 * m], 1.0);
                EXPECT_EQ(table.level(j)[4 * m + 2], 0.0);
            }
        }
    }
}

TEST_P(TwiddleTableTest, Scales) {
    const std::uint32_t r = GetParam();
    GuardedWords memory(TwiddleTable::doubles(r, 9));
    const TwiddleTable table(r, 9, doubles_of(memory), ParallelContext::sequential());
    EXPECT_EQ(table.scale(0), 1.0 / r);
    EXPECT_EQ(table.scale(1), 1.0 / (2 * r));
    EXPECT_EQ(table.scale(2), 1.0 / (4 * r));
    EXPECT_EQ(table.scale(3), 1.0 / (8 * r));
    for (std::uint32_t j = 5; j <= 10; ++j) EXPECT_EQ(table.scale(64 + j), 1.0 / (r << (j - 1)));
    EXPECT_EQ(table.scale(64 + 11), 0.0);
}

TEST_P(TwiddleTableTest, ShortTablesAreScalesOnly) {
    const std::uint32_t r = GetParam();
    GuardedWords memory(TwiddleTable::doubles(r, 3));
    const std::vector<qmp::Word> before = memory.value();
    const TwiddleTable table(r, 3, doubles_of(memory), ParallelContext::sequential());
    EXPECT_EQ(memory.value(), before);
    EXPECT_EQ(table.level(5), nullptr);
    EXPECT_EQ(table.scale(0), 1.0 / r);
}

INSTANTIATE_TEST_SUITE_P(Multipliers, TwiddleTableTest, testing::Values(1u, 3u, 5u, 7u));

TEST(TwiddleTable, TasksDoNotChangeIt) {
    qmp::PushPoolParallelizer pool;
    GuardedWords one(TwiddleTable::doubles(3, 14)), many(TwiddleTable::doubles(3, 14));
    const TwiddleTable a(3, 14, doubles_of(one), ParallelContext::sequential());
    const TwiddleTable b(3, 14, doubles_of(many), ParallelContext{7, &pool});
    // What lies before the first level is never written.
    EXPECT_EQ(one.value(), many.value());
}

TEST(TwiddleSet, TheLargestExponentOfEveryMultiplier) {
    for (std::uint64_t words :
         {std::uint64_t{1}, std::uint64_t{32}, std::uint64_t{33}, std::uint64_t{96}, std::uint64_t{97},
          std::uint64_t{160}, std::uint64_t{2000}, std::uint64_t{10240}}) {
        std::uint32_t largest[8] = {};
        for (std::uint64_t n = 1; n <= words; ++n) {
            const qmp::fft::FftParams& params = qmp::fft::fft_params(64 * n);
            largest[params.r] = std::max(largest[params.r], params.k);
        }
        std::uint64_t doubles = 0;
        for (std::uint32_t r : {1u, 3u, 5u, 7u}) {
            if (largest[r]) doubles += TwiddleTable::doubles(r, largest[r]);
        }
        ASSERT_EQ(TwiddleSet::bytes_needed(words), doubles * 8);

        GuardedWords memory(doubles);
        const TwiddleSet set(memory.data(), doubles * 8, words, ParallelContext::sequential());
        EXPECT_TRUE(memory.guards_intact());
        EXPECT_EQ(set.largest_product(), words);
        const double* next = doubles_of(memory);
        for (std::uint32_t r : {1u, 3u, 5u, 7u}) {
            const TwiddleTable* table = set.table(r);
            ASSERT_EQ(table != nullptr, largest[r] != 0) << r;
            if (table == nullptr) continue;
            EXPECT_EQ(table->exponent(), largest[r]);
            EXPECT_EQ(table->multiplier(), r);
            // One table after the other.
            EXPECT_EQ(table->level(5), next + 16 * r);
            next += TwiddleTable::doubles(r, largest[r]);
        }
        EXPECT_EQ(set.table(2), nullptr);
        EXPECT_EQ(set.table(0), nullptr);
        EXPECT_EQ(set.table(9), nullptr);
    }
}

TEST(TwiddleSet, NothingForNoProduct) {
    EXPECT_EQ(TwiddleSet::bytes_needed(0), 0u);
    const TwiddleSet set(nullptr, 0, 0, ParallelContext::sequential());
    EXPECT_EQ(set.largest_product(), 0u);
    EXPECT_EQ(set.table(1), nullptr);
}

// Products beyond the floating-point transform's range need no more of its tables than its largest ones.
TEST(TwiddleSet, FloatingPointTablesStopWhereTheOtherTransformTakesOver) {
    EXPECT_EQ(
        TwiddleSet::bytes_needed(10240),
        8 * (TwiddleTable::doubles(1, 15) + TwiddleTable::doubles(3, 13) + TwiddleTable::doubles(5, 13)));
    // 10241 words and a transform of 3 * 2^13 points at the most, which has 3 columns' layers.
    const std::uint64_t columns = TwiddleSet::bytes_needed(10241) - TwiddleSet::bytes_needed(10240);
    EXPECT_GT(columns, 0u);
    EXPECT_EQ(TwiddleSet::bytes_needed(10241, 0), columns);
    EXPECT_EQ(TwiddleSet::bytes_needed(10241, 1572864), TwiddleSet::bytes_needed(10240) + columns +
                                                            TwiddleSet::bytes_needed(10241, 10241) -
                                                            TwiddleSet::bytes_needed(10241));
    // Beyond every transform: the tables of the largest.
    EXPECT_EQ(TwiddleSet::bytes_needed(~std::uint64_t{0}), TwiddleSet::bytes_needed(5153960755200));
}

TEST(TwiddleSet, ColumnTablesOfTheMultipliersInUse) {
    constexpr std::uint64_t n = 100000;
    const std::uint64_t bytes = TwiddleSet::bytes_needed(n);
    GuardedWords memory(bytes / 8);
    const TwiddleSet set(memory.data(), bytes, n, ParallelContext::sequential());
    EXPECT_TRUE(memory.guards_intact());
    EXPECT_EQ(set.largest_product(), n);
    for (std::uint32_t r : {1, 3, 5, 7}) ASSERT_NE(set.columns(r), nullptr) << r;
    EXPECT_EQ(set.columns(2), nullptr);
    EXPECT_EQ(set.columns(9), nullptr);
    // Without them.
    const std::uint64_t less = TwiddleSet::bytes_needed(10240);
    const TwiddleSet small(memory.data(), less, 10240, ParallelContext::sequential());
    EXPECT_EQ(small.columns(1), nullptr);
    EXPECT_NE(small.table(1), nullptr);
}

TEST(TwiddleSet, ShortMemory) {
    const std::uint64_t bytes = TwiddleSet::bytes_needed(200);
    GuardedWords memory(bytes / 8);
    try {
        const TwiddleSet set(memory.data(), bytes - 1, 200, ParallelContext::sequential());
        FAIL();
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.function(), "TwiddleSet::TwiddleSet()");
        EXPECT_EQ(e.limit(), bytes - 1);
        EXPECT_EQ(e.attempted(), bytes);
    }
}

}  // namespace
