// What the series of the constants tell of themselves: signs, margins, leaves, costs.
#include <gtest/gtest.h>

#include <cmath>

#include "constants/arccoth_series.h"
#include "constants/catalan_huvent.h"
#include "constants/catalan_lupas.h"
#include "constants/lemniscate_series.h"
#include "constants/zeta3_series.h"
#include "series/series_cost.h"

namespace kelvara {
namespace {

struct Model {
    const qmp::CostedSeries& series;
    bool alternating;
    std::uint64_t size_margin;
    std::uint64_t leaf_size;
    double log_ratio;
    double q_linear;
    double q_factorial;
    double shift;  // sizes are those of the index plus this
};

void expect_model(const Model& model) {
    const qmp::CostedSeries& s = model.series;
    EXPECT_EQ(s.alternating, model.alternating);
    EXPECT_EQ(s.size_margin, model.size_margin);
    EXPECT_EQ(s.leaf_size, model.leaf_size);
    EXPECT_GE(s.longest_leaf, model.leaf_size - 1);
    for (const qmp::SeriesCost& cost : {s.cost, s.psr_cost}) {
        EXPECT_NEAR(cost.log_ratio, model.log_ratio, 1e-13);
        EXPECT_NEAR(cost.words_per_term, model.log_ratio * 0.02254211001389005, 1e-14);
        EXPECT_NEAR(cost.q_linear, model.q_linear, 1e-12);
        EXPECT_EQ(cost.q_factorial, model.q_factorial);
    }
    for (const double x : {0.0, 1.0, 100.0, 12345.0}) {
        const double shifted = x + model.shift;
        const double size = s.cost.q_linear * shifted + model.q_factorial * qmp::log_factorial(shifted);
        EXPECT_EQ(s.SizeAtIndex(x), size);
        EXPECT_EQ(s.SizeAtIndexPSR(x), size);
    }
    EXPECT_DOUBLE_EQ(s.DecayBetween(10, 30), 20 * s.psr_cost.log_ratio);
}

TEST(SeriesModels, OfEveryConstant) {
    const double ln_23_7 = 4 * std::log(23.0 / 7.0);
    const ArcCothSeries two(2), largest(4294967295);
    const ArcSinlemnSeries half({1, 2}), seventh({7, 23});
    const double ln_largest = 2 * std::log(4294967295.0);
    const Model models[] = {
        {two, false, 15, 16, std::log(4.0), std::log(8.0), 1, 0},
        {largest, false, 15, 16, ln_largest, ln_largest + std::log(2.0), 1, 0},
        {zeta3_formula(0).series, true, 41, 6, std::log(110592.0), std::log(884736.0), 8, 1},
        {zeta3_formula(1).series, true, 28, 12, std::log(1024.0), std::log(1024.0), 5, 1},
        {catalan_lupas_formula().series, true, 25, 10, std::log(4.0), std::log(256.0), 4, 0},
        {catalan_huvent_series(), true, 64, 2, std::log(64.0), 12 * std::log(24.0), 18, 0},
        {half, false, 19, 8, std::log(16.0), std::log(128.0), 2, 0},
        {seventh, false, 19, 8, ln_23_7, 4 * std::log(23.0) + std::log(8.0), 2, 0},
    };
    for (std::size_t i = 0; i < std::size(models); i++) {
        SCOPED_TRACE(i);
        expect_model(models[i]);
    }
}

TEST(SeriesModels, TermsOfTheFinalFractions) {
    EXPECT_EQ(zeta3_formula(0).w, 12463u);
    EXPECT_EQ(zeta3_formula(0).d, 10368u);
    EXPECT_EQ(zeta3_formula(1).w, 77u);
    EXPECT_EQ(zeta3_formula(1).d, 64u);
    EXPECT_EQ(catalan_lupas_formula().w, 19u);
    EXPECT_EQ(catalan_lupas_formula().d, 18u);
}

double value_of(const qmp::ExactFloat& x) {
    double value = 0;
    for (std::uint64_t i = x.L; i-- > 0;) value = value * 0x1p64 + static_cast<double>(x.T[i]);
    return std::ldexp(value, static_cast<int>(64 * x.exp));
}

// Forty terms of Huvent's series in doubles; its term of index 0 would be -469137217 / 1334025.
TEST(SeriesModels, HuventsSeriesSumsToCatalansConstant) {
    double sum = 0;
    for (std::uint64_t k = 1; k <= 40; k++) {
        qmp::Word words[36];
        qmp::ExactFloat P(words, 18), Q(words + 18, 18);
        Catalan_Huvent_BSR_End(P, Q, k);
        sum += (k % 2 ? 1 : -1) * (value_of(P) / value_of(Q));
    }
    EXPECT_NEAR((469137217 + 1334025 * sum) / 512265600, 0.915965594177219, 1e-15);
    // P(0) / Q(0), Q(0) = (3 * 5 * 5 * 7 * 11)^2 = 25 * 1334025
    EXPECT_EQ(std::uint64_t{11728430425} / 25, 469137217u);
    EXPECT_EQ(std::uint64_t{5775} * 5775, std::uint64_t{25} * 1334025);
}

}  // namespace
}  // namespace kelvara
