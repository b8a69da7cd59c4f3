#include "radix/digit_counting.h"

#include <gtest/gtest.h>

#include <string>

#include "support/levels.h"
#include "support/random_words.h"

namespace qmp::radix {
namespace {

class DigitCounting : public kelvara_test::LevelTest {};

DigitCounts naive(const std::string& values, std::uint32_t radix) {
    DigitCounts counts{};
    for (const char c : values) {
        if (static_cast<unsigned char>(c) < radix) ++counts[static_cast<std::size_t>(c)];
    }
    return counts;
}

DigitCounts count(const std::string& values, std::uint32_t radix) {
    DigitCounts counts{};
    count_digits(counts, values.data(), values.size(), radix);
    return counts;
}

TEST_P(DigitCounting, EveryLength) {
    kelvara_test::Random random(21);
    for (const std::uint32_t radix : {10u, 16u}) {
        for (std::size_t n = 0; n < 300; ++n) {
            std::string values(n, '\0');
            for (char& c : values) c = static_cast<char>(random.next() % radix);
            ASSERT_EQ(count(values, radix), naive(values, radix)) << n;
        }
    }
}

// More of one value than a byte counts, in every lane.
TEST_P(DigitCounting, LongRuns) {
    for (const std::uint32_t radix : {10u, 16u}) {
        for (std::uint32_t v = 0; v < radix; ++v) {
            for (const std::size_t n : {32u * 255, 32u * 255 + 1, 32u * 256, 100000u}) {
                DigitCounts expected{};
                expected[v] = n;
                ASSERT_EQ(count(std::string(n, static_cast<char>(v)), radix), expected);
            }
        }
    }
}

TEST_P(DigitCounting, OtherValuesAreNotCounted) {
    std::string values;
    for (int c = 0; c < 256; ++c) values += static_cast<char>(c);
    values += values;
    for (const std::uint32_t radix : {10u, 16u}) EXPECT_EQ(count(values, radix), naive(values, radix));
}

TEST_P(DigitCounting, AddsToWhatIsThere) {
    DigitCounts counts{};
    counts[7] = 5;
    counts[15] = 1;
    const std::string sevens(100, 7);
    count_digits(counts, sevens.data(), sevens.size(), 10);
    EXPECT_EQ(counts[7], 105u);
    EXPECT_EQ(counts[15], 1u);
}

INSTANTIATE_EVERY_LEVEL(DigitCounting);

}  // namespace
}  // namespace qmp::radix
