// Cost models, splits, term counts, buffer sizes.
#include <gtest/gtest.h>

#include <cmath>

#include "constants/pi_formulas.h"
#include "errors/exception.h"
#include "multiply/multiply.h"
#include "series/series_e_taylor.h"
#include "series/test_series.h"

namespace qmp {
namespace {

using kelvara_test::ArcCothSeries;
using kelvara_test::LogSeries;

const BSS_P2B3_Type0& chudnovsky() {
    return kelvara::pi_formula(0).series;
}
const BSS_P2B3_Type0& ramanujan() {
    return kelvara::pi_formula(1).series;
}

TEST(SeriesConstants, AgreeWithTheLibraryFunctions) {
    const SeriesConstants& c = series_constants();
    EXPECT_DOUBLE_EQ(c.log10_e, std::log10(std::exp(1.0)));
    EXPECT_DOUBLE_EQ(c.log10_2, std::log10(2.0));
    EXPECT_DOUBLE_EQ(c.digits_per_word, 64 * std::log10(2.0));
    EXPECT_DOUBLE_EQ(c.ln_2, std::log(2.0));
    EXPECT_DOUBLE_EQ(c.ln_32, std::log(32.0));
    EXPECT_DOUBLE_EQ(c.ln_4, std::log(4.0));
    EXPECT_DOUBLE_EQ(c.ln_word, 64 * std::log(2.0));
    EXPECT_DOUBLE_EQ(c.ln_ln_word, std::log(64 * std::log(2.0)));
    EXPECT_DOUBLE_EQ(c.words_per_digit, 1 / c.digits_per_word);
    EXPECT_DOUBLE_EQ(c.words_per_unit, 1 / c.ln_word);
}

TEST(LogFactorial, IsStirlingsEstimate) {
    EXPECT_EQ(log_factorial(-3), 0);
    EXPECT_EQ(log_factorial(0), 0);
    EXPECT_EQ(log_factorial(1), 0);
    for (const double x : {1.5, 2.0, 10.0, 1e3, 1e9, 1e14}) {
        EXPECT_NEAR(log_factorial(x), std::lgamma(x + 1), 0.09 / x + 1e-14 * std::lgamma(x + 1));
    }
}

TEST(PiSeries, FieldsAreTheFormulas) {
    EXPECT_TRUE(chudnovsky().alternating);
    EXPECT_EQ(chudnovsky().size_margin, 23u);
    EXPECT_EQ(chudnovsky().leaf_size, 8u);
    EXPECT_NEAR(chudnovsky().cost.log_ratio, std::log(151931373056000.0), 1e-13);
    EXPECT_NEAR(chudnovsky().cost.q_linear, std::log(10939058860032000.0), 1e-13);
    EXPECT_EQ(chudnovsky().cost.q_factorial, 3);
    EXPECT_DOUBLE_EQ(chudnovsky().cost.words_per_term, chudnovsky().cost.log_ratio * 0.022542110013890053);
    EXPECT_FALSE(ramanujan().alternating);
    EXPECT_EQ(ramanujan().size_margin, 23u);
    EXPECT_EQ(ramanujan().leaf_size, 12u);
    // The literal is ln 96059301, not quite ln(396^4 / 256).
    EXPECT_NEAR(ramanujan().cost.log_ratio, std::log(96059301.0), 1e-14);
    EXPECT_NEAR(ramanujan().cost.q_linear, std::log(3073907232.0), 1e-13);
    for (const auto* series : {&chudnovsky(), &ramanujan()}) {
        EXPECT_EQ(series->cost.log_ratio, series->psr_cost.log_ratio);
        EXPECT_EQ(series->cost.q_linear, series->psr_cost.q_linear);
        EXPECT_EQ(series->SizeAtIndex(1234), series->SizeAtIndexPSR(1234));
    }
}

TEST(TermsForPrecision, OfTheCostedSeries) {
    EXPECT_EQ(chudnovsky().TermsForPrecision(1000), 1360u);
    EXPECT_EQ(LogSeries(false).TermsForPrecision(10), 642u);  // 640 + 1.5, to the even neighbour
}

TEST(TermsForPrecision, OfTheExponentialSeries) {
    for (const bool negative : {false, true}) {
        const Series_e_Taylor series(negative);
        for (const std::uint64_t p : {1u, 2u, 10u, 1000u, 123456u}) {
            const double target = static_cast<double>(p) * series_constants().ln_word + 1;
            const auto n = static_cast<double>(series.TermsForPrecision(p) - 2);
            EXPECT_GE(log_factorial(n), target);
            EXPECT_LT(log_factorial(n - 1), target);
        }
        EXPECT_EQ(series.alternating, negative);
        EXPECT_EQ(series.size_margin, 10u);
        EXPECT_EQ(series.leaf_size, 16u);
        EXPECT_EQ(series.SizeAtIndex(77), log_factorial(77));
        EXPECT_EQ(series.SizeAtIndexPSR(77), log_factorial(77));
        EXPECT_EQ(series.DecayBetween(10, 77), log_factorial(77) - log_factorial(10));
    }
}

TEST(PrecisionAtIndex, FallsWithTheIndex) {
    const std::uint64_t p = 1000;
    EXPECT_EQ(chudnovsky().PrecisionAtIndex(0, p), 1002u);  // 1001.5, to the even neighbour
    EXPECT_EQ(chudnovsky().PrecisionAtIndex(1e6, p), 2u);
    const double words = 1000 - 500 * chudnovsky().cost.words_per_term;
    EXPECT_EQ(chudnovsky().PrecisionAtIndex(500, p), static_cast<std::uint64_t>(std::llrint(words + 1.5)));
}

TEST(PrecisionAtIndex, IsNotForTheExponentialSeries) {
    try {
        Series_e_Taylor(false).PrecisionAtIndex(1, 1);
        FAIL();
    } catch (const StringException& e) {
        EXPECT_EQ(e.function(), "BinarySplittingSeries::PrecisionAtIndex()");
        EXPECT_EQ(e.message(), "Required to use ASR.");
    }
}

TEST(FindSplit, OfTwoTermsIsTheEnd) {
    for (const std::uint64_t a : {0u, 1u, 7u, 1000u}) {
        EXPECT_EQ(find_split(chudnovsky(), a, a + 1), a + 1);
        // The first half of two terms costs less than the second, so both end up on the left.
        EXPECT_EQ(find_split(chudnovsky(), a, a + 2), a + 2);
    }
}

TEST(FindSplit, HalvesTheCost) {
    for (const BSS_P2B3_Type0* series : {&chudnovsky(), &ramanujan()}) {
        for (const std::uint64_t b : {101u, 1000u, 54321u, 100000000u}) {
            const std::uint64_t a = b / 3;
            const std::uint64_t m = find_split(*series, a, b);
            EXPECT_GT(m, (a + b) / 2);
            const auto size = [&](std::uint64_t x) { return series->SizeAtIndex(static_cast<double>(x)); };
            const double target = (size(a) + size(b)) * 0.5;
            EXPECT_GE(size(m), target);
            EXPECT_LT(size(m - 1), target);
        }
    }
}

TEST(Split, IsByIndexForShortRanges) {
    EXPECT_EQ(chudnovsky().split(3, 103), 53u);
    EXPECT_EQ(chudnovsky().split(3, 104), find_split(chudnovsky(), 3, 104));
    EXPECT_EQ(chudnovsky().cost_split(3, 103), find_split(chudnovsky(), 3, 103));
}

TEST(SignRule, SubtractsAfterAnOddNumberOfTerms) {
    for (const std::uint64_t a : {0u, 1u, 10u, 11u}) {
        EXPECT_TRUE(chudnovsky().subtracts(a, a + 3));
        EXPECT_FALSE(chudnovsky().subtracts(a, a + 4));
        EXPECT_FALSE(ramanujan().subtracts(a, a + 3));
    }
}

TEST(BsrSizes, WorkedExample) {
    const Series_e_Taylor series(false);
    const BsrSizes sizes = BSR_sizes(series, 1000, 1, 1);
    EXPECT_EQ(sizes.words, 2274u);
    EXPECT_EQ(sizes.scratch_bytes, TableScratch(1020, 1));
    EXPECT_EQ(BSR_sizes(series, 1000, 0, 1).words, 2274u);
}

TEST(BsrSizes, FollowTheLevels) {
    const Series_e_Taylor series(false);  // margin 10
    // Two tasks are doubled to four, two parallel levels: 256 + 10, 143, 81, then 65 terms from 81 on.
    const BsrSizes parallel = BSR_parallel_sizes(series, 512, 4, 2);
    std::uint64_t v = 81;
    std::uint64_t words = v;
    for (int i = 0; i < 64; i++) words += v = v / 2 + 10;
    EXPECT_EQ(parallel.words, 4 * words);
    EXPECT_EQ(parallel.scratch_bytes, std::max({TableScratch(532, 2), 2 * (TableScratch(286, 2) + 64),
                                                4 * (TableScratch(162, 2) + 64)}));
    EXPECT_EQ(BSR_sizes(series, 512, 0, 2).words, parallel.words);

    const BsrSizes block = BSR_sizes(series, 1004, 1, 2);  // u_1 = 512
    EXPECT_EQ(block.words, parallel.words + 512);
    EXPECT_EQ(block.scratch_bytes, std::max(TableScratch(1024, 2), parallel.scratch_bytes));
    const BsrSizes deeper = BSR_sizes(series, 1988, 2, 2);  // u_1 = 1004, u_2 = 512
    EXPECT_EQ(deeper.words, parallel.words + 512 + 1004);
}

TEST(BsrSizes, TableScratchServesEverySmallerProduct) {
    std::uint64_t before = 0;
    for (std::uint64_t n = 1; n < 3000; n++) {
        const std::uint64_t bytes = TableScratch(n, 1);
        EXPECT_GE(bytes, before);
        before = bytes;
    }
}

TEST(BsrSizes, BeyondTheTable) {
    try {
        BSR_sizes(Series_e_Taylor(false), std::uint64_t{1} << 60, 1, 1);
        FAIL();
    } catch (const LimitExceededException& e) {
        EXPECT_EQ(e.function(), "AlgorithmTableB::iPsize()");
        EXPECT_EQ(e.attempted(), (std::uint64_t{1} << 60) + 20);
    }
}

// What holds two transformed operands also serves a whole product, at the lengths around every change.
TEST(TransformPairScratch, IsWithinTheTablesScratch) {
    const std::uint64_t end = std::min<std::uint64_t>(200000, basic_table_64().largest_product());
    for (std::uint64_t n = 59; n < end; n += n / 40 + 1) {
        for (const std::uint64_t length : {n, n + 1}) {
            TransformParametersBox box;
            const TransformParameters& parameters = construct_transform(box, length);
            EXPECT_LE(8 * (2 * parameters.operand_words + parameters.scratch_words), TableScratch(length, 1))
                << length;
        }
    }
}

}  // namespace
}  // namespace qmp
