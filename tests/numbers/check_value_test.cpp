#include "numbers/check_value.h"

#include <gtest/gtest.h>

#include "support/random_words.h"

namespace {

using namespace qmp;

std::uint64_t remainder(DoubleWord value) {
    return static_cast<std::uint64_t>(value % check_modulus);
}

TEST(CheckValue, ReducesWords) {
    for (Word w : {Word{0}, Word{1}, check_modulus - 1, check_modulus, check_modulus + 1, 2 * check_modulus,
                   8 * check_modulus, ~Word{0}, ~Word{0} - 1}) {
        EXPECT_EQ(check_reduce(w), remainder(w)) << w;
    }
}

TEST(CheckValue, ReducesDoubleWords) {
    kelvara_test::Random random(1);
    for (int i = 0; i < 2000; ++i) {
        const DoubleWord v = static_cast<DoubleWord>(random.next()) << 64 | random.next();
        EXPECT_EQ(check_reduce(v), remainder(v));
        const DoubleWord w = ~static_cast<DoubleWord>(0) >> random.between(0, 127);
        EXPECT_EQ(check_reduce(w), remainder(w));
        EXPECT_EQ(check_reduce(static_cast<DoubleWord>(check_modulus) * random.next()), 0u);
    }
}

TEST(CheckValue, AddsSubtractsMultiplies) {
    kelvara_test::Random random(2);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t a = i == 0 ? check_modulus - 1 : random.next() % check_modulus;
        const std::uint64_t b = i < 2 ? check_modulus - 1 : random.next() % check_modulus;
        EXPECT_EQ(check_add(a, b), (a + b) % check_modulus);
        EXPECT_EQ(check_sub(a, b), (a + check_modulus - b) % check_modulus);
        EXPECT_EQ(check_mul(a, b), remainder(static_cast<DoubleWord>(a) * b));
    }
    EXPECT_EQ(check_sub(0, check_modulus - 1), 1u);
}

TEST(CheckValue, Powers) {
    EXPECT_EQ(pow_mod(5, 0), 1u);
    EXPECT_EQ(pow_mod(0, 0), 1u);
    EXPECT_EQ(pow_mod(5, 1), 5u);
    EXPECT_EQ(pow_mod(2, 61), 1u);
    EXPECT_EQ(pow_mod(3, check_modulus - 1), 1u) << "Fermat";
    std::uint64_t power = 1;
    for (std::uint64_t e = 0; e < 200; ++e, power = check_mul(power, 1234567891011)) {
        EXPECT_EQ(pow_mod(1234567891011, e), power);
    }
}

TEST(CheckValue, WeightsOfWordPositions) {
    EXPECT_EQ(check_word_weight(0), 1u);
    EXPECT_EQ(check_word_weight(1), 8u);
    EXPECT_EQ(check_word_weight(-1), std::uint64_t{1} << 58);
    for (std::int64_t k = 0; k < 200; ++k)
        EXPECT_EQ(check_mul(check_word_weight(k), check_word_weight(-k)), 1u);
    // 8 has order 61.
    EXPECT_EQ(check_word_weight(61 * 1000003), 1u);
    EXPECT_EQ(check_word_weight(INT64_MIN), pow_mod(std::uint64_t{1} << 58, std::uint64_t{1} << 63));
}

}  // namespace
