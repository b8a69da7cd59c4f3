#include "constants/log_verification.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

LogFormula formula(std::initializer_list<LogTerm> terms) {
    LogFormula made;
    for (const LogTerm& term : terms) made.slots[made.count++] = term;
    return made;
}

TEST(LogVerification, AcceptsWhatIsTrue) {
    EXPECT_TRUE(verify_log_formula(formula({{26, 18}, {4801, -2}, {8749, 8}}), 2));
    EXPECT_TRUE(verify_log_formula(formula({{3, 2}}), 2));  // ln 2 = 2 ArcCoth(3)
    EXPECT_TRUE(verify_log_formula(formula({{2, 2}}), 3));  // ln 3 = 2 ArcCoth(2)
    EXPECT_TRUE(verify_log_formula(formula({{3, 62}}), std::uint64_t{1} << 31));
    EXPECT_TRUE(verify_log_formula(formula({}), 1));
    // 257 is beyond the primes of the tables: ln 257 = ln 256 + 2 ArcCoth(513).
    EXPECT_TRUE(verify_log_formula(formula({{3, 16}, {513, 2}}), 257));
    // A prime above 2^16: ln 65537 = ln 65536 + 2 ArcCoth(131073).
    EXPECT_TRUE(verify_log_formula(formula({{3, 32}, {131073, 2}}), 65537));
    // The square of one above 251: 2 ln 257 = ln(2^9 3 43) + 2 ArcCoth(132097), ln 43 = ln(2 3 7) + 2
    // ArcCoth(85), ln 7 = 3 ln 2 - 2 ArcCoth(15).
    EXPECT_TRUE(verify_log_formula(formula({{2, 4}, {3, 26}, {15, -2}, {85, 2}, {132097, 2}}), 257 * 257));
    // A term that counts nothing.
    EXPECT_TRUE(verify_log_formula(formula({{3, 2}, {5, 0}}), 2));
}

TEST(LogVerification, RefusesWhatIsNot) {
    const LogFormula two = formula({{26, 18}, {4801, -2}, {8749, 8}});
    EXPECT_FALSE(verify_log_formula(two, 0));
    EXPECT_FALSE(verify_log_formula(two, 1));
    EXPECT_FALSE(verify_log_formula(two, 3));
    EXPECT_FALSE(verify_log_formula(two, 4));
    EXPECT_FALSE(verify_log_formula(formula({}), 2));
    for (std::size_t i = 0; i < two.count; i++) {
        for (const std::int64_t delta : {-2, -1, 1, 2}) {
            LogFormula other = two;
            other.slots[i].c += delta;
            EXPECT_FALSE(verify_log_formula(other, 2));
            other = two;
            other.slots[i].x += static_cast<std::uint64_t>(delta);
            EXPECT_FALSE(verify_log_formula(other, 2));
        }
    }
    EXPECT_FALSE(verify_log_formula(formula({{3, 1}}), 2));   // the square root of 2
    EXPECT_FALSE(verify_log_formula(formula({{3, -2}}), 2));  // one half
    EXPECT_FALSE(verify_log_formula(formula({{5, 2}}), 2));   // 3/2
}

TEST(LogVerification, RefusesWhatTheSeriesCannotSum) {
    EXPECT_FALSE(verify_log_formula(formula({{0, 2}}), 1));
    EXPECT_FALSE(verify_log_formula(formula({{1, 2}}), 1));
    // Nothing, with the largest argument and with one that is too large.
    EXPECT_TRUE(verify_log_formula(formula({{4294967295, -2}, {4294967295, 2}}), 1));
    EXPECT_FALSE(verify_log_formula(formula({{4294967296, -2}, {4294967296, 2}}), 1));
}

TEST(LogVerification, RefusesExponentsThatDoNotFit) {
    const std::int64_t most = INT64_MAX;
    EXPECT_FALSE(verify_log_formula(formula({{3, INT64_MIN}}), 2));
    EXPECT_FALSE(verify_log_formula(formula({{7, most}}), 2));              // 8 = 2^3
    EXPECT_FALSE(verify_log_formula(formula({{3, most - 1}, {3, 8}}), 2));  // the sum
    EXPECT_FALSE(verify_log_formula(formula({{3, most - 1}}), 2));          // fits, and is wrong
}

// Terms that cancel each other are right, but their primes need room.
TEST(LogVerification, RefusesMoreThan32Primes) {
    const std::uint64_t products[] = {
        2ull * 3 * 5 * 7 * 11 * 13 * 17 * 19 * 23,
        29ull * 31 * 37 * 41 * 43 * 47,
        53ull * 59 * 61 * 67 * 71,
        73ull * 79 * 83 * 89 * 97,
        101ull * 103 * 107 * 109,
        113ull * 127 * 131 * 137,
    };
    LogFormula nothing;
    for (const std::uint64_t product : products) {
        nothing.slots[nothing.count++] = {product + 1, 2};
        nothing.slots[nothing.count++] = {product + 1, -2};
        if (nothing.count == 4) {
            EXPECT_TRUE(verify_log_formula(nothing, 1));
        }
    }
    EXPECT_FALSE(verify_log_formula(nothing, 1));
}

}  // namespace
}  // namespace kelvara
