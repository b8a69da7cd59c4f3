#include "radix/digit_counts.h"

#include <gtest/gtest.h>

#include "support/fatal.h"

namespace qmp {
namespace {

TEST(DigitCounts, WordsToDecimalDigits) {
    EXPECT_EQ(word_to_dec(0), 1u);
    EXPECT_EQ(word_to_dec(1), 20u);
    EXPECT_EQ(word_to_dec(1000), 19266u);
    EXPECT_EQ(word_to_dec(word_to_dec_limit), 5422874305198573u);
}

TEST(DigitCounts, DecimalToHexadecimalDigitsAddsOneAndBackDoesNot) {
    EXPECT_EQ(dec_to_hex(0), 1u);
    EXPECT_EQ(dec_to_hex(100), 84u);
    EXPECT_EQ(dec_to_hex(1000000), 830483u);
    EXPECT_EQ(hex_to_dec(0), 0u);
    EXPECT_EQ(hex_to_dec(1), 1u);
    EXPECT_EQ(hex_to_dec(16), 19u);
    EXPECT_EQ(hex_to_dec(1000000), 1204119u);
}

TEST(DigitCounts, LargestCountsConvert) {
    EXPECT_EQ(dec_to_hex(digit_count_limit), 3740158532571576u);
    EXPECT_EQ(hex_to_dec(digit_count_limit), 5422874305198590u);
}

#if GTEST_HAS_DEATH_TEST
TEST(DigitCountsDeathTest, CountsBeyondTheLimitAreFatal) {
    EXPECT_FATAL(word_to_dec(std::uint64_t{1} << 48), "word_to_dec\\(\\): Float-Indexing Limit Exceeded");
    EXPECT_FATAL(dec_to_hex(std::uint64_t{1} << 52), "dec_to_hex\\(\\): Float-Indexing Limit Exceeded");
    EXPECT_FATAL(hex_to_dec(std::uint64_t{1} << 52), "hex_to_dec\\(\\): Float-Indexing Limit Exceeded");
    EXPECT_FATAL(word_to_dec(std::uint64_t{3} << 62), "word_to_dec\\(\\): Float-Indexing Limit Exceeded");
}
#endif

}  // namespace
}  // namespace qmp
