#include "digitfiles/digit_file_name.h"

#include <gtest/gtest.h>

#include "support/fatal.h"

namespace qmp {
namespace {

TEST(DigitFileName, BothRadices) {
    EXPECT_EQ(digit_file_name("out", "Pi", 10, "Chudnovsky (1988)"), "out/Pi - Dec - Chudnovsky (1988).txt");
    EXPECT_EQ(digit_file_name("out", "Sqrt(2)", 16, "Newton's Method"),
              "out/Sqrt(2) - Hex - Newton's Method.txt");
}

TEST(DigitFileName, SlashesAreAddedWhereMissing) {
    EXPECT_EQ(digit_file_name("out/", "e", 10, "a"), "out/e - Dec - a.txt");
    EXPECT_EQ(digit_file_name("C:\\out\\", "e", 10, "a"), "C:\\out\\e - Dec - a.txt");
    EXPECT_EQ(digit_file_name("/", "e", 10, "a"), "/e - Dec - a.txt");
    EXPECT_EQ(digit_file_name("", "e", 10, "a"), "e - Dec - a.txt");
}

#if GTEST_HAS_DEATH_TEST
TEST(DigitFileNameDeathTest, OtherRadicesAreFatal) {
    EXPECT_FATAL(digit_file_name("out", "Pi", 8, "a"), "Invalid Base");
}
#endif

}  // namespace
}  // namespace qmp
