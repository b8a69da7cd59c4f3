#include "console/format.h"

#include <gtest/gtest.h>

#include <limits>

namespace qmp::console {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();

TEST(Format, Integers) {
    EXPECT_EQ(format_int(0), "0");
    EXPECT_EQ(format_int(largest), "18446744073709551615");
    EXPECT_EQ(format_signed(-1), "-1");
    EXPECT_EQ(format_signed(lowest), "-9223372036854775808");
}

TEST(Format, SeparatesGroupsOfThree) {
    EXPECT_EQ(format_separated(0), "0");
    EXPECT_EQ(format_separated(999), "999");
    EXPECT_EQ(format_separated(1'000), "1,000");
    EXPECT_EQ(format_separated(123'456), "123,456");
    EXPECT_EQ(format_separated(1'234'567), "1,234,567");
    EXPECT_EQ(format_separated(largest), "18,446,744,073,709,551,615");
    EXPECT_EQ(format_signed_separated(-1'234'567), "-1,234,567");
    EXPECT_EQ(format_signed_separated(-123), "-123");
    EXPECT_EQ(format_signed_separated(lowest), "-9,223,372,036,854,775,808");
}

TEST(Format, SmallByteCountsPadOneDigitOnly) {
    EXPECT_EQ(format_bytes(0), " 0 bytes");
    EXPECT_EQ(format_bytes(5), " 5 bytes");
    EXPECT_EQ(format_bytes(9), " 9 bytes");
    EXPECT_EQ(format_bytes(10), "10 bytes");
    EXPECT_EQ(format_bytes(50), "50 bytes");
    EXPECT_EQ(format_bytes(999), "999 bytes");
}

TEST(Format, ByteCountsHaveThreeDigits) {
    const struct {
        std::uint64_t bytes;
        const char* text;
    } cases[] = {
        {1'000, "0.98 KiB"},
        {1'013, "0.99 KiB"},
        {1'018, "0.99 KiB"},  // 994 thousandths
        {1'019, "1.00 KiB"},  // 995
        {1'023, "1.00 KiB"},
        {1'024, "1.00 KiB"},
        {1'536, "1.50 KiB"},
        {1'090, "1.06 KiB"},
        {10'233, "9.99 KiB"},
        {10'239, "10.0 KiB"},  // the hundredths carry
        {10'240, "10.0 KiB"},
        {102'348, "99.9 KiB"},
        {102'399, " 100 KiB"},  // the tenths carry
        {102'400, " 100 KiB"},
        {1'023'487, " 999 KiB"},
        {1'023'488, "0.98 MiB"},  // 999,500
        {1'023'999, "0.98 MiB"},
        {1'024'000, "0.98 MiB"},
        {1'048'576, "1.00 MiB"},
        {123'456'789, " 118 MiB"},
        {std::uint64_t{1} << 30, "1.00 GiB"},
        {std::uint64_t{1} << 40, "1.00 TiB"},
        {std::uint64_t{1} << 50, "1.00 PiB"},
        {std::uint64_t{1} << 60, "1.00 EiB"},
        {std::uint64_t{1} << 63, "8.00 EiB"},
        {largest, "16.0 EiB"},
    };
    for (const auto& one : cases) EXPECT_EQ(format_bytes(one.bytes), one.text) << one.bytes;
}

TEST(Format, BytesKeepTheirWidthAtEverySize) {
    // From one kibibyte on: three digits and a point, or a blank and three digits.
    for (int exponent = 10; exponent < 64; ++exponent) {
        for (int delta = -3; delta <= 3; ++delta) {
            const std::uint64_t bytes = (std::uint64_t{1} << exponent) + static_cast<std::uint64_t>(delta);
            EXPECT_EQ(format_bytes(bytes).size(), 8u) << bytes;
        }
    }
}

TEST(Format, Modes) {
    EXPECT_EQ(format_int(1'048'576, IntegerStyle::plain), "1048576");
    EXPECT_EQ(format_int(1'048'576, IntegerStyle::separated), "1,048,576");
    EXPECT_EQ(format_int(1'048'576, IntegerStyle::bytes), "1.00 MiB");
    EXPECT_EQ(format_int(1'048'576, IntegerStyle::separated_bytes), "1,048,576 (1.00 MiB)");
    EXPECT_EQ(format_int(1'048'576, static_cast<IntegerStyle>(17)), "1048576");
    EXPECT_EQ(format_signed(-1'234, IntegerStyle::separated), "-1,234");
    EXPECT_EQ(format_separated_bytes(5), "5 ( 5 bytes)");
}

TEST(Format, Fixed) {
    EXPECT_EQ(format_fixed(1.0, 3), "1.000");
    EXPECT_EQ(format_fixed(-2.5, 1), "-2.5");
    EXPECT_EQ(format_fixed(12.75, 0), "13");
    EXPECT_EQ(format_fixed(1e300, 2).size(), 304u);
    EXPECT_EQ(format_fixed(0.0, -1), "0");
}

TEST(Format, TimesChangeTheirUnit) {
    EXPECT_EQ(format_time(125.5), "125.500 seconds  ( 2.092 minutes )");
    EXPECT_EQ(format_time(0), "0.000 seconds  ( 0.000 minutes )");
    EXPECT_EQ(format_time(7'199), "7199.000 seconds  ( 119.983 minutes )");
    EXPECT_EQ(format_time(7'200), "7200.000 seconds  ( 2.000 hours )");
    EXPECT_EQ(format_time(172'799), "172799.000 seconds  ( 48.000 hours )");
    EXPECT_EQ(format_time(172'800), "172800.000 seconds  ( 2.000 days )");
    EXPECT_EQ(format_time(-7'200), "-7200.000 seconds  ( -2.000 hours )");
}

}  // namespace
}  // namespace qmp::console
