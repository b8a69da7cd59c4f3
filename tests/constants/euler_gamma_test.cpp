#include "constants/euler_gamma.h"

#include <gtest/gtest.h>

#include <cmath>

#include "constants/square_root.h"

namespace kelvara {
namespace {

TEST(EulerGammaParameter, IsTheSmallestPowerThatReachesThePrecision) {
    for (const std::uint64_t precision : {1u, 7u, 100u, 1000u, 1000000u}) {
        const double x = static_cast<double>(precision) * 44.3614195558365 / 4 + 10;
        const std::uint32_t k = brent_mcmillan_exponent(precision);
        EXPECT_GE(k, 3u);
        EXPECT_GE(std::ldexp(1.0, static_cast<int>(k)), x);
        if (k > 3) {
            EXPECT_LT(std::ldexp(1.0, static_cast<int>(k) - 1), x);
        }
    }
    EXPECT_EQ(brent_mcmillan_exponent(1), 5u);     // 2^5 >= 21.09...
    EXPECT_EQ(brent_mcmillan_exponent(100), 11u);  // 2^11 >= 1119.03...
}

TEST(PerfectSquare, IsExactEverywhere) {
    for (std::uint64_t root = 0; root < 70000; root++) {
        const std::uint64_t square = root * root;
        EXPECT_TRUE(is_perfect_square(square));
        if (root > 1) {
            EXPECT_FALSE(is_perfect_square(square - 1));
            EXPECT_FALSE(is_perfect_square(square + 1));
        }
    }
    for (std::uint64_t root = UINT32_MAX; root > UINT32_MAX - 1000; root--) {
        EXPECT_TRUE(is_perfect_square(root * root));
        EXPECT_FALSE(is_perfect_square(root * root - 1));
        EXPECT_FALSE(is_perfect_square(root * root + 1));
    }
    EXPECT_FALSE(is_perfect_square(UINT64_MAX));
}

}  // namespace
}  // namespace kelvara
