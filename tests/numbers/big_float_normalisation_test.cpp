// Top words, low words and the last unit.
#include <gtest/gtest.h>

#include "numbers/big_float.h"
#include "numbers/expect_errors.h"
#include "numbers/number_buffers.h"
#include "support/fatal.h"

namespace {

using namespace kelvara_test;
using qmp::BigFloat;
using qmp::ParallelContext;

// A number with the given words, normalised or not.
struct Number : GuardedBigFloat {
    Number(const Words& words, std::int64_t exp, std::uint64_t room = 0, std::uint8_t sign = 1)
        : GuardedBigFloat(words.size() + room) {
        std::copy(words.begin(), words.end(), number.T);
        number.L = words.size();
        number.exp = exp;
        number.sign = sign;
    }
};

TEST(BigFloatNormalisation, StripsOnesThenZeros) {
    Number a({5, all_ones, all_ones}, -3);
    a.number.strip_l1s();
    expect_number(a.number, {5}, -3);
    Number b({0, all_ones}, -2, 0, 0);
    b.number.strip_l1s();
    expect_zero(b.number);
    Number c({5, all_ones, 0, 0, all_ones}, 1);
    c.number.strip_l1s();
    expect_number(c.number, {5, all_ones}, 1);
    Number d({0, 0, 5}, 1);
    d.number.strip_l1s();
    expect_number(d.number, {0, 0, 5}, 1);
    Number e({all_ones, all_ones}, 7);
    e.number.strip_l1s();
    expect_zero(e.number);
}

TEST(BigFloatNormalisation, NegatesWhatIsLeft) {
    Number a({0, 0, 5, all_ones}, -4);
    a.number.negate_l1s();
    expect_number(a.number, {0, 0, all_ones - 4}, -4);
    Number b({1, 5, all_ones}, -3);
    b.number.negate_l1s();
    expect_number(b.number, {all_ones, all_ones - 5}, -3);
    Number c({0, all_ones}, -2);
    c.number.negate_l1s();
    expect_zero(c.number);
    Number d({5, all_ones, 0, all_ones}, 0);
    d.number.negate_l1s();
    expect_number(d.number, {all_ones - 4}, 0);
}

TEST(BigFloatNormalisation, TruncatesAbove) {
    const Words words{1, 0, 0, 4};  // positions -2 to 1
    Number whole(words, -2);
    whole.number.truncate_above(2);
    expect_number(whole.number, words, -2);
    Number stripped(words, -2);
    stripped.number.truncate_above(1);
    expect_number(stripped.number, {1}, -2);
    Number gone(words, -2);
    gone.number.truncate_above(-2);
    expect_zero(gone.number);
    Number nothing_left({0, 0, 4}, -2);
    nothing_left.number.truncate_above(0);
    expect_zero(nothing_left.number);
}

TEST(BigFloatNormalisation, AddsOneUnit) {
    Number a({all_ones, all_ones, 5}, 0);
    a.number.add_ulp();
    expect_number(a.number, {0, 0, 6}, 0);
    Number b({all_ones, all_ones}, -2, 1);
    b.number.add_ulp();
    expect_number(b.number, {0, 0, 1}, -2);
}

TEST(BigFloatNormalisation, TheUnitsCapacityErrorNamesSetDouble) {
    Number a({all_ones, all_ones}, 0);
    expect_buffer_too_small([&] { a.number.add_ulp(); }, "BigFloat::set_double()", 2, 3);
}

TEST(BigFloatNormalisation, DropsLowWords) {
    Number a({1, 2, 3, 4}, -9, 0, 0);
    a.number.truncate_to(4);
    expect_number(a.number, {1, 2, 3, 4}, -9, 0);
    a.number.truncate_to(2);
    expect_number(a.number, {3, 4}, -7, 0);
    EXPECT_EQ(a.number.T, a.number.base + 2);
    a.number.truncate_to(0);
    expect_zero(a.number);
    EXPECT_EQ(a.number.T, a.number.base);
}

TEST(BigFloatNormalisation, CheckAcceptsNormalisedNumbers) {
    Number({0, 1}, 0).number.check_normalization();
    Number({}, 0).number.check_normalization();
}

#if GTEST_HAS_DEATH_TEST
TEST(BigFloatNormalisationDeathTest, ATopWordOfZeroIsFatal) {
    Number a({1, 0}, 0);
    EXPECT_FATAL(a.number.check_normalization(), "BigFloat::check_normalization\\(\\): Top word is zero\\.");
}
#endif

}  // namespace
