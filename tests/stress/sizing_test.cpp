// How long a test's products are for a given memory.
#include "stress/sizing.h"

#include <gtest/gtest.h>

#include <limits>

#include "multiply/twiddle_set.h"
#include "stress/catalogue.h"
#include "stress/stress_machine_fake.h"
#include "stress/workloads.h"
#include "support/console.h"

namespace kelvara {
namespace {

constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();

// A test whose memory is easy to follow.
class PlainTest : public StressTest {
  public:
    std::uint64_t scratch_per_unit = 0;
    std::uint64_t table_words = 0;
    std::uint64_t largest_bits = std::uint64_t{1} << 40;

    std::uint64_t max_bits() const override { return largest_bits; }
    std::uint64_t scratch_bytes(std::uint64_t units) const override { return scratch_per_unit * units; }
    TwiddleReach twiddle_reach(std::uint64_t) const override { return {table_words, 0}; }
    void square(const qmp::MultiplyContext&, qmp::Word*, const qmp::Word*, std::uint64_t) const override {}
    ProductWork work(std::uint64_t) const override { return {}; }
};

std::uint64_t largest_units(const StressTest& test, std::uint64_t threads, std::uint64_t bytes) {
    const UnitsFound found = find_largest_units(test, threads, bytes);
    EXPECT_TRUE(found.scratch_increases);
    return found.units;
}

// Needs less scratch for long products than for short ones.
class ShrinkingTest final : public PlainTest {
  public:
    std::uint64_t scratch_bytes(std::uint64_t units) const override { return units < 300 ? 6400 : 64; }
};

TEST(StressTestSize, EveryPartIsWholeCacheLines) {
    PlainTest test;
    test.scratch_per_unit = 3;
    const StressTestSize size = stress_test_size(test, 101);
    EXPECT_EQ(size.units, 101u);
    EXPECT_EQ(size.operand_words(), 48u);  // 50 in lines of 8
    EXPECT_EQ(size.product_words(), 96u);
    EXPECT_EQ(size.operand_bytes, 384u);
    EXPECT_EQ(size.scratch_bytes, 320u);  // 303
    EXPECT_EQ(size.part_bytes, 1536u);    // 808 + 384 + 320 = 1512
    EXPECT_EQ(size.table_bytes, 0u);
}

TEST(StressTestSize, TablesAreRoundedToo) {
    PlainTest test;
    test.table_words = 20000;
    const std::uint64_t bytes = qmp::TwiddleSet::bytes_needed(20000, 0);
    EXPECT_GT(bytes, 0u);
    EXPECT_EQ(stress_test_size(test, 16).table_bytes, (bytes + 63) / 64 * 64);
}

TEST(StressTestSize, FewUnitsHaveNoOperand) {
    const PlainTest test;
    EXPECT_EQ(stress_test_size(test, 15).operand_words(), 0u);
    EXPECT_EQ(stress_test_size(test, 16).operand_words(), 8u);
}

TEST(LargestUnits, AreTheMostThatFit) {
    PlainTest test;
    test.scratch_per_unit = 5;
    for (const std::uint64_t threads : {1u, 3u}) {
        for (const std::uint64_t units : {1u, 2u, 255u, 256u, 257u, 512u, 5000u}) {
            const std::uint64_t bytes = threads * stress_test_size(test, units).part_bytes;
            const std::uint64_t found = largest_units(test, threads, bytes);
            EXPECT_GE(found, units);
            EXPECT_LE(threads * stress_test_size(test, found).part_bytes, bytes);
            EXPECT_GT(threads * stress_test_size(test, found + 1).part_bytes, bytes);
            EXPECT_LT(largest_units(test, threads, bytes - 1), units);
        }
    }
}

TEST(LargestUnits, ThreadsShareTables) {
    PlainTest test;
    test.table_words = 20000;
    const StressTestSize size = stress_test_size(test, 100);
    const std::uint64_t bytes = 4 * size.part_bytes + size.table_bytes;
    EXPECT_GE(largest_units(test, 4, bytes), 100u);
    EXPECT_LT(largest_units(test, 4, bytes - 1), 100u);
    EXPECT_EQ(largest_units(test, 1, size.table_bytes), 0u);
}

TEST(LargestUnits, StopAtTheLargestProduct) {
    PlainTest test;
    for (const std::uint64_t bits : {std::uint64_t{64}, std::uint64_t{64 * 255}, std::uint64_t{64 * 256},
                                     std::uint64_t{64 * 1000 + 63}, std::uint64_t{1} << 40}) {
        test.largest_bits = bits;
        EXPECT_EQ(largest_units(test, 1, most), bits / 64);
    }
}

TEST(LargestUnits, AreNoneForTinyMemoryAndManyThreads) {
    const PlainTest test;
    EXPECT_EQ(largest_units(test, 1, 0), 0u);
    EXPECT_EQ(largest_units(test, 1, 63), 0u);
    EXPECT_EQ(largest_units(test, 1, 64), 8u);
    EXPECT_EQ(largest_units(test, most, 64), 0u);
    EXPECT_EQ(largest_units(test, most, most), 0u);
    EXPECT_EQ(largest_units(test, most / 64, most), 8u);
}

TEST(LargestUnits, SmallerScratchOfALongerProductIsNoticed) {
    const ShrinkingTest test;
    EXPECT_TRUE(find_largest_units(test, 1, 8000).scratch_increases);
    EXPECT_FALSE(find_largest_units(test, 1, 80000).scratch_increases);
    StressSettings settings = kelvara_test::small_settings(1, 80000);
    for (const StressMode mode : {StressMode::local, StressMode::global}) {
        settings.mode = mode;
        EXPECT_EQ(kelvara_test::printed_by([&] { stress_test_size(test, settings); }),
                  "\nInconsistency: iPsize() is not an increasing function.\n");
    }
    EXPECT_EQ(kelvara_test::printed_by([&] { stress_test_size(PlainTest(), settings); }), "");
}

TEST(LargestUnits, OfEveryTestFitAndReachItsLimit) {
    for (const StressTestEntry& entry : stress_tests()) {
        SCOPED_TRACE(entry.code);
        const StressTest& test = *entry.test;
        std::uint64_t before = 0;
        for (int shift = 0; shift < 44; shift += 2) {
            const std::uint64_t bytes = (std::uint64_t{1} << shift) + 12345;
            const std::uint64_t units = largest_units(test, 2, bytes);
            EXPECT_GE(units, before);
            before = units;
            if (units == 0) continue;
            const StressTestSize size = stress_test_size(test, units);
            EXPECT_LE(2 * size.part_bytes + size.table_bytes, bytes);
        }
        // More memory than there is: the search neither overflows nor goes beyond the algorithm's reach.
        const std::uint64_t units = largest_units(test, 1, 0x6ffffffffffffff9);
        EXPECT_LE(units, test.max_bits() / 64);
        EXPECT_GT(units, before / 2);
    }
    EXPECT_EQ(largest_units(*stress_tests()[0].test, 1, 1 << 30), 1024u);
    EXPECT_EQ(largest_units(*stress_tests()[1].test, 1, std::uint64_t{1} << 34), 1572864u);
}

}  // namespace
}  // namespace kelvara
