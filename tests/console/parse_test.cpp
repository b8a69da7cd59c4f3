#include "console/parse.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace qmp::console {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();

const std::string too_long(40, '9');

TEST(Parse, DecimalStopsAtTheFirstOtherCharacter) {
    EXPECT_EQ(parse_decimal("123"), 123u);
    EXPECT_EQ(parse_decimal("8x"), 8u);
    EXPECT_EQ(parse_decimal("1,000"), 1u);
    EXPECT_EQ(parse_decimal(""), 0u);
    EXPECT_EQ(parse_decimal("x8"), 0u);
    EXPECT_EQ(parse_decimal("-8"), 0u);
    EXPECT_EQ(parse_decimal(" 8"), 0u);
    EXPECT_EQ(parse_decimal("18446744073709551615"), largest);
    EXPECT_EQ(parse_decimal("18446744073709551616"), largest);
    EXPECT_EQ(parse_decimal(too_long), largest);
}

TEST(Parse, DecimalsThatFit) {
    EXPECT_EQ(parse_decimal_that_fits(""), 0u);
    EXPECT_EQ(parse_decimal_that_fits("8x"), 8u);
    EXPECT_EQ(parse_decimal_that_fits("18446744073709551615"), largest);
    EXPECT_EQ(parse_decimal_that_fits("00000000000000000000000018446744073709551615 "), largest);
    EXPECT_EQ(parse_decimal_that_fits("18446744073709551616"), std::nullopt);
    EXPECT_EQ(parse_decimal_that_fits("184467440737095516150"), std::nullopt);
    EXPECT_EQ(parse_decimal_that_fits(too_long), std::nullopt);
}

TEST(Parse, CommandLineSuffixesAreDecimalInEitherCase) {
    EXPECT_EQ(parse_int_with_suffix("25m"), 25'000'000u);
    EXPECT_EQ(parse_int_with_suffix("25M"), 25'000'000u);
    EXPECT_EQ(parse_int_with_suffix("4k"), 4'000u);
    EXPECT_EQ(parse_int_with_suffix("4K"), 4'000u);
    EXPECT_EQ(parse_int_with_suffix("1b"), 1'000'000'000u);
    EXPECT_EQ(parse_int_with_suffix("1B"), 1'000'000'000u);
    EXPECT_EQ(parse_int_with_suffix("2t"), 2'000'000'000'000u);
    EXPECT_EQ(parse_int_with_suffix("2T"), 2'000'000'000'000u);
    EXPECT_EQ(parse_int_with_suffix("7g"), 7u);
    EXPECT_EQ(parse_int_with_suffix("7 k"), 7u);
    EXPECT_EQ(parse_int_with_suffix("k"), 0u);
    EXPECT_EQ(parse_int_with_suffix(""), 0u);
    EXPECT_EQ(parse_int_with_suffix("99999999999t"), largest);
}

TEST(Parse, SignedValues) {
    EXPECT_EQ(parse_signed_with_suffix("-1"), -1);
    EXPECT_EQ(parse_signed_with_suffix("-2k"), -2'000);
    EXPECT_EQ(parse_signed_with_suffix("3m"), 3'000'000);
    EXPECT_EQ(parse_signed_with_suffix(""), 0);
    EXPECT_EQ(parse_signed_with_suffix("-"), 0);
    EXPECT_EQ(parse_signed_with_suffix("--1"), 0);
    EXPECT_EQ(parse_signed_with_suffix(too_long), highest);
    EXPECT_EQ(parse_signed_with_suffix("-" + too_long), lowest);
    EXPECT_EQ(parse_signed("-17 is odd"), -17);
    EXPECT_EQ(parse_signed("17k"), 17);
    EXPECT_EQ(parse_signed("letters"), 0);
    EXPECT_EQ(parse_signed("9223372036854775807"), highest);
    EXPECT_EQ(parse_signed("9223372036854775808"), highest);
    EXPECT_EQ(parse_signed("-9223372036854775807"), -highest);
    EXPECT_EQ(parse_signed("-9223372036854775808"), lowest);
}

TEST(Parse, BytesHaveBinaryUnitsInEitherCase) {
    EXPECT_EQ(parse_bytes("100"), 100u);
    EXPECT_EQ(parse_bytes("1k"), 1'024u);
    EXPECT_EQ(parse_bytes("1K"), 1'024u);
    EXPECT_EQ(parse_bytes("768MB"), std::uint64_t{768} << 20);
    EXPECT_EQ(parse_bytes("4 G"), std::uint64_t{4} << 30);
    EXPECT_EQ(parse_bytes("2t"), std::uint64_t{2} << 40);
    EXPECT_EQ(parse_bytes("2P"), std::uint64_t{2} << 50);
    EXPECT_EQ(parse_bytes("2e"), std::uint64_t{2} << 60);
    EXPECT_EQ(parse_bytes("100B"), 100u);
    EXPECT_EQ(parse_bytes("100x"), 100u);
    EXPECT_EQ(parse_bytes(""), 0u);
    EXPECT_EQ(parse_bytes("G"), 0u);
    EXPECT_EQ(parse_bytes("16E"), largest);
    EXPECT_EQ(parse_bytes(too_long + "E"), largest);
}

TEST(Parse, ByteFractionsRoundUpAndNeedAUnit) {
    EXPECT_EQ(parse_bytes("1.5k"), 1'536u);
    EXPECT_EQ(parse_bytes("1.0001K"), 1'025u);
    EXPECT_EQ(parse_bytes("2.5GB"), std::uint64_t{5} << 29);
    EXPECT_EQ(parse_bytes("0.25K"), 256u);
    EXPECT_EQ(parse_bytes("0.375K"), 384u);
    EXPECT_EQ(parse_bytes(".5M"), std::uint64_t{1} << 19);
    EXPECT_EQ(parse_bytes("1.K"), 1'024u);
    EXPECT_EQ(parse_bytes("1.9"), 1u);
    EXPECT_EQ(parse_bytes("1.9B"), 1u);
    EXPECT_EQ(parse_bytes("1.5.5K"), 1u);
    EXPECT_EQ(parse_bytes("0.1E"), 115'292'150'460'684'698u);  // 2^60 / 10, rounded up
    EXPECT_EQ(parse_bytes("0." + too_long + "K"), 1'024u);
    EXPECT_EQ(parse_bytes("1.0000000000000000000000000001K"), 1'025u);
    EXPECT_EQ(parse_bytes("1.0000000000000000000000000000K"), 1'024u);
}

TEST(Parse, KeyboardSuffixesAreCaseSensitive) {
    EXPECT_EQ(parse_digit_count("25m"), 25'000'000);
    EXPECT_EQ(parse_digit_count("25M"), 26'214'400);
    EXPECT_EQ(parse_digit_count("1,000,000"), 1'000'000);
    EXPECT_EQ(parse_digit_count("10b"), 10'000'000'000);
    EXPECT_EQ(parse_digit_count("10B"), 10);
    EXPECT_EQ(parse_digit_count("2t"), 2'000'000'000'000);
    EXPECT_EQ(parse_digit_count("1K"), 1'024);
    EXPECT_EQ(parse_digit_count("1k"), 1);
    EXPECT_EQ(parse_digit_count("1G"), std::int64_t{1} << 30);
    EXPECT_EQ(parse_digit_count("1T"), std::int64_t{1} << 40);
    EXPECT_EQ(parse_digit_count("1P"), std::int64_t{1} << 50);
    EXPECT_EQ(parse_digit_count("1E"), std::int64_t{1} << 60);
    EXPECT_EQ(parse_digit_count("3  m"), 3'000'000);
    EXPECT_EQ(parse_digit_count("-5m"), -5'000'000);
    EXPECT_EQ(parse_digit_count(",,,"), 0);
    EXPECT_EQ(parse_digit_count("abc"), 0);
    EXPECT_EQ(parse_digit_count(too_long), highest);
    EXPECT_EQ(parse_digit_count("-" + too_long), lowest);
    EXPECT_EQ(parse_digit_count("100E"), highest);
}

TEST(Parse, UnsignedDigitCountsUseEveryBit) {
    EXPECT_EQ(parse_unsigned_digit_count("18,446,744,073,709,551,615"), largest);
    EXPECT_EQ(parse_unsigned_digit_count("18446744073709551616"), std::nullopt);
    EXPECT_EQ(parse_unsigned_digit_count("16E"), std::nullopt);
    EXPECT_EQ(parse_unsigned_digit_count(too_long), std::nullopt);
    EXPECT_EQ(parse_unsigned_digit_count("-1"), std::nullopt);
    EXPECT_EQ(parse_unsigned_digit_count("-0"), 0u);
    EXPECT_EQ(parse_unsigned_digit_count("25m"), 25'000'000u);
    EXPECT_EQ(parse_unsigned_digit_count(""), 0u);
}

}  // namespace
}  // namespace qmp::console
