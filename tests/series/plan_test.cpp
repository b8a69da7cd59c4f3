#include "series/psr_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "constants/pi_formulas.h"
#include "series/test_series.h"
#include "support/standard_streams.h"

namespace qmp {
namespace {

const BSS_P2B3_Type0& chudnovsky() {
    return kelvara::pi_formula(0).series;
}

std::uint64_t words_between(const BinarySplittingSeries& series, std::uint64_t a, std::uint64_t n) {
    return static_cast<std::uint64_t>(std::llrint(
        series.DecayBetween(static_cast<double>(a), static_cast<double>(n)) * 0.022542110013890053 + 1.5));
}

void expect_consistent(const BinarySplittingSeries& series, const PsrPlan& plan, std::uint64_t p) {
    EXPECT_EQ(plan.terms, series.TermsForPrecision(p));
    ASSERT_FALSE(plan.blocks.empty());
    std::uint64_t start = 0;
    for (const PsrBlock& block : plan.blocks) {
        EXPECT_EQ(block.a, start);
        EXPECT_GT(block.b, block.a);
        EXPECT_EQ(block.precision_at_a, words_between(series, block.a, plan.terms));
        EXPECT_EQ(block.precision_at_b, words_between(series, block.b, plan.terms));
        EXPECT_EQ(block.size, psr_size(series, block.a, block.b));
        EXPECT_EQ(block.flag, 0);
        start = block.b;
    }
    EXPECT_EQ(start, plan.terms);
}

TEST(PsrPlan, CoversTheTermsInOrder) {
    for (const std::uint64_t p : {1u, 10u, 100u, 735u, 736u, 1000u, 2000u, 54321u, 10000000u}) {
        for (const double factor : {1.0, 0.5}) {
            for (std::uint32_t formula : {0u, 1u}) {
                const BSS_P2B3_Type0& series = kelvara::pi_formula(formula).series;
                expect_consistent(series, build_psr_plan(series, p, factor), p);
            }
            const kelvara_test::LogSeries log(false);
            expect_consistent(log, build_psr_plan(log, p, factor), p);
        }
    }
}

TEST(PsrPlan, ShortSeriesAreOneBlock) {
    const std::uint64_t p = 735;  // 1000 terms
    ASSERT_EQ(chudnovsky().TermsForPrecision(p), 1000u);
    const PsrPlan plan = build_psr_plan(chudnovsky(), p, 1.0);
    ASSERT_EQ(plan.blocks.size(), 1u);
    EXPECT_EQ(plan.blocks[0].a, 0u);
    EXPECT_EQ(plan.blocks[0].b, 1000u);
    EXPECT_EQ(plan.blocks[0].precision_at_b, 2u);  // 1.5, to the even neighbour
    EXPECT_GT(build_psr_plan(chudnovsky(), 736, 1.0).blocks.size(), 1u);
}

TEST(PsrPlan, BlocksAreAsLongAsTheirRuleAllows) {
    const std::uint64_t p = 100000;
    for (const double factor : {1.0, 0.5}) {
        const PsrPlan plan = build_psr_plan(chudnovsky(), p, factor);
        const double cap = static_cast<double>(p) * factor * series_constants().ln_word;
        for (std::size_t i = 0; i + 1 < plan.blocks.size(); i++) {
            const PsrBlock& block = plan.blocks[i];
            const auto holds = [&](std::uint64_t m) {
                const double growth = chudnovsky().SizeAtIndexPSR(static_cast<double>(m)) -
                                      chudnovsky().SizeAtIndexPSR(static_cast<double>(block.a));
                return growth < std::min(cap, chudnovsky().DecayBetween(static_cast<double>(m),
                                                                        static_cast<double>(plan.terms)));
            };
            EXPECT_TRUE(holds(block.b - 1)) << i;
            EXPECT_FALSE(holds(block.b)) << i;
        }
    }
}

TEST(PsrPlan, HalfTheCapMakesMoreEarlyBlocks) {
    const PsrPlan whole = build_psr_plan(chudnovsky(), 100000, 1.0);
    const PsrPlan half = build_psr_plan(chudnovsky(), 100000, 0.5);
    const auto early = [](const PsrPlan& plan) {
        return std::count_if(plan.blocks.begin(), plan.blocks.end(),
                             [](const PsrBlock& block) { return block.precision_at_a > 50000; });
    };
    EXPECT_GT(early(half), early(whole));
    EXPECT_LT(half.blocks[0].size, whole.blocks[0].size);
    EXPECT_LE(half.blocks[0].size, 50002u);
}

TEST(PsrPlan, TheTailIsTruncatedHeavily) {
    const PsrPlan plan = build_psr_plan(chudnovsky(), 100000, 1.0);
    EXPECT_GE(plan.blocks.front().precision_at_a, 100000u);
    EXPECT_LT(plan.blocks.back().precision_at_a, 100u);
}

TEST(PsrPlan, WarnsBeyondTenThousandBlocks) {
    kelvara_test::CapturedOutput captured;
    const PsrPlan plan = build_psr_plan(chudnovsky(), 8000, 0.00001);
    const std::string output = captured.finish();
    ASSERT_GT(plan.blocks.size(), 10000u);
    const std::string warning = "Performance Warning: PSR plan has exceeded 10000 blocks.";
    const std::size_t at = output.find(warning);
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(output.find(warning, at + 1), std::string::npos);
    EXPECT_NE(output.find("PSR plan has reached a size of " + std::to_string(plan.blocks.size()) + "\n"),
              std::string::npos);
    EXPECT_NE(output.find("It is not recommended to proceed with such a computation.\n\n"
                          "If you are seeing this message, then you are either having too much fun with\n"
                          "the parameter override, or there is a serious bug in the program.\n"),
              std::string::npos);
}

TEST(PsrPlan, IsSilentBelowThat) {
    kelvara_test::CapturedOutput captured;
    build_psr_plan(chudnovsky(), 100000, 1.0);
    EXPECT_EQ(captured.finish(), "");
}

TEST(SizesForPlan, AreTheLargestOfTheBlocks) {
    const PsrPlan plan = build_psr_plan(chudnovsky(), 2000, 1.0);
    ASSERT_GT(plan.blocks.size(), 2u);
    for (std::uint64_t first = 0; first < plan.blocks.size(); first++) {
        const PlanSizes sizes = chudnovsky().SizesForPlan(plan, first, 3);
        std::uint64_t exact = 0;
        for (std::uint64_t i = first; i < plan.blocks.size(); i++) {
            const BsrSizes block = BSR_sizes(chudnovsky(), plan.blocks[i].size, 1, 3);
            exact = std::max(exact, block.words);
            EXPECT_GE(sizes.scratch_bytes, block.scratch_bytes);
        }
        const PsrBlock& block = plan.blocks[first];
        EXPECT_EQ(sizes.exact_words, exact);
        EXPECT_EQ(sizes.running_words,
                  std::max(block.precision_at_a + 23,
                           2 * BSR_sizes(chudnovsky(), plan.blocks.back().size, 1, 3).words));
        EXPECT_GE(sizes.scratch_bytes, TableScratch(2 * ((block.precision_at_b + block.size) / 2 + 23), 3));
    }
}

}  // namespace
}  // namespace qmp
