// The term tables, the settings' derived sizes, and the texts.
#include "constants/bbp/terms.h"

#include <gtest/gtest.h>

#include <cmath>

#include "constants/bbp/block_sum.h"
#include "constants/bbp/settings.h"

namespace kelvara::bbp {
namespace {

// 1 / (alpha k + beta) scaled, for the first k: what is left is below any rounding.
double sum_of_series(Formula formula) {
    double sum = 0;
    for (const Term& term : terms(formula, 0)) {
        double part = 0;
        for (int k = 0; k < 20; ++k) {
            part += std::ldexp(1 / static_cast<double>(term.alpha * k + term.beta),
                               static_cast<int>(term.exponent + term.step * k));
        }
        sum += term.add ? part : -part;
    }
    return sum;
}

TEST(BbpTerms, SumsToPi) {
    // Bellard's series leaves out multiples of 1, none of them at offset 0.
    EXPECT_NEAR(sum_of_series(Formula::plouffe), 3.14159265358979323846, 1e-14);
    EXPECT_NEAR(sum_of_series(Formula::bellard), 3.14159265358979323846, 1e-14);
    EXPECT_EQ(terms(Formula::plouffe, 0).size(), 4u);
    EXPECT_EQ(terms(Formula::bellard, 0).size(), 14u);
}

TEST(BbpTerms, TheOffsetRaisesExponents) {
    for (const Formula formula : {Formula::plouffe, Formula::bellard}) {
        const auto here = terms(formula, 0), there = terms(formula, largest_offset);
        for (std::size_t i = 0; i < here.size(); ++i) {
            EXPECT_EQ(there[i].exponent, here[i].exponent + 4 * static_cast<std::int64_t>(largest_offset));
            EXPECT_EQ(there[i].alpha, here[i].alpha);
            EXPECT_EQ(there[i].step, here[i].step);
        }
    }
}

TEST(BbpTerms, Needed) {
    EXPECT_EQ(terms_needed(Formula::plouffe, 0, 8), 24u);
    EXPECT_EQ(terms_needed(Formula::plouffe, 1000000000, 32), 1000000048u);
    EXPECT_EQ(terms_needed(Formula::bellard, 0, 8), 24u * 4 / 20 + 1);
    EXPECT_EQ(terms_needed(Formula::bellard, 1000000000, 32), 200000010u);
    EXPECT_EQ(terms_needed(Formula::plouffe, largest_offset, largest_digits), (1ull << 46) + 15 + 1048576);
}

TEST(BbpTerms, Texts) {
    EXPECT_EQ(text_of(terms(Formula::plouffe, 1000000000)[0]), "Frac( 1/(8k + 1) * 2^(-4k + 4000000002) )");
    EXPECT_EQ(text_of(terms(Formula::bellard, 0)[13]), "Frac( 1/(20k + 19) * 2^(-20k + -16) )");
    EXPECT_STREQ(name_of(Formula::bellard), "Bellard's 7-term BBP");
    EXPECT_STREQ(name_of_choice(Formula::plouffe), "Plouffe's 4-term BBP");
    EXPECT_STREQ(name_of_choice(Formula::bellard), "Bellard's 7-term BBP  (~43% faster)");
}

TEST(BbpTerms, WhereThePowersEnd) {
    EXPECT_EQ(count_of_powers({8, 1, -4, 2, true}), 1u);
    EXPECT_EQ(count_of_powers({8, 1, -4, 1, true}), 1u);
    EXPECT_EQ(count_of_powers({8, 1, -4, 0, true}), 0u);
    EXPECT_EQ(count_of_powers({8, 1, -4, -1, true}), 0u);
    EXPECT_EQ(count_of_powers({8, 1, -4, 4, true}), 1u);
    EXPECT_EQ(count_of_powers({8, 1, -4, 5, true}), 2u);
    EXPECT_EQ(count_of_powers({20, 1, -20, 21, true}), 2u);
}

TEST(BbpTerms, TheLimitOfModuli) {
    constexpr std::uint64_t many = ~std::uint64_t{0};
    // 8k + 1 at k = 2^46 is the first one beyond it.
    const Term term = {8, 1, -4, 4 * ((std::int64_t{1} << 46) - 1) + 1, true};
    EXPECT_TRUE(within_limit(term, many));
    const Term beyond = {8, 1, -4, term.exponent + 4, true};
    EXPECT_FALSE(within_limit(beyond, many));
    // Unless that one is not summed, or is a small term.
    EXPECT_TRUE(within_limit(beyond, std::uint64_t{1} << 46));
    EXPECT_TRUE(within_limit({8, modulus_limit, -4, 0, true}, many));
    EXPECT_FALSE(within_limit({8, modulus_limit, -4, 1, true}, many));
}

TEST(BbpSettings, PrecisionFollowsTheDigits) {
    Settings settings;
    EXPECT_EQ(settings.formula, Formula::plouffe);
    EXPECT_EQ(settings.offset, 1000000000u);
    EXPECT_EQ(settings.digits, 32u);
    EXPECT_EQ(settings.threads, 1u);
    EXPECT_TRUE(settings.pin_threads);
    EXPECT_EQ(settings.working_digits(), 48u);
    EXPECT_EQ(settings.precision_words(), 6u);
    EXPECT_EQ(settings.precision_digits(), 48u);
    settings.digits = 8;
    EXPECT_EQ(settings.precision_words(), 3u);
    settings.digits = 9;
    EXPECT_EQ(settings.precision_words(), 4u);
    settings.digits = largest_digits;
    EXPECT_EQ(settings.precision_digits(), 1048592u);
}

TEST(BbpSettings, ThreadsAreThoseOfTheMachine) {
    EXPECT_GE(default_settings().threads, 1u);
    EXPECT_LE(default_settings().threads, largest_threads);
}

}  // namespace
}  // namespace kelvara::bbp
