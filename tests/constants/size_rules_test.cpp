#include "constants/size_rules.h"

#include <gtest/gtest.h>

#include "errors/exception.h"

namespace kelvara {
namespace {

std::string refusal(std::uint64_t digits, std::uint64_t largest) {
    try {
        check_digits(digits, largest);
    } catch (const qmp::InvalidParametersException& e) {
        EXPECT_EQ(e.function(), "");
        return e.message();
    }
    return "";
}

TEST(SizeRules, Bounds) {
    EXPECT_EQ(refusal(99, largest_digits), "Computation size must be at least 100 decimal digits.");
    EXPECT_EQ(refusal(0, largest_digits), "Computation size must be at least 100 decimal digits.");
    EXPECT_EQ(refusal(100, largest_digits), "");
    EXPECT_EQ(refusal(1000000000000050, largest_digits), "");
    EXPECT_EQ(refusal(1000000000000051, largest_digits),
              "Computation size cannot be larger than 1,000,000,000,000,050 decimal digits.");
    EXPECT_EQ(refusal(1001, 1000), "Computation size cannot be larger than 1,000 decimal digits.");
}

TEST(SizeRules, Precision) {
    EXPECT_EQ(precision_for_digits(100), 7u);  // 84 hexadecimal digits
    EXPECT_EQ(precision_for_digits(1000), (831u >> 4) + 2);
    EXPECT_EQ(precision_for_digits(1000000), (830483u >> 4) + 2);
}

#if GTEST_HAS_DEATH_TEST
TEST(SizeRulesDeathTest, RefusesSizesBeyondExactDoubles) {
    EXPECT_EXIT(precision_for_digits(std::uint64_t{1} << 52), testing::ExitedWithCode(1), "");
}
#endif

}  // namespace
}  // namespace kelvara
