// Conversions into a BigFloat, products with a word, single words added.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

#include "numbers/big_float.h"
#include "numbers/expect_errors.h"
#include "numbers/number_buffers.h"
#include "platform/parallel/registry.h"
#include "support/fatal.h"

namespace {

using namespace kelvara_test;
using qmp::BigFloat;
using qmp::ParallelContext;
using qmp::Word;

ParallelContext sequential() {
    return ParallelContext::sequential();
}

TEST(BigFloatSetBigFloat, KeepsTheTopWords) {
    const Words source{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    GuardedBigFloat x(5);
    x.number.T = x.number.base + 3;
    x.number.set_BigFloat(sequential(), view_of(source, -2, 0), 3);
    expect_number(x.number, {5, 6, 7, 8, 9}, 3, 0);
    EXPECT_EQ(x.number.T, x.number.base);
}

TEST(BigFloatSetBigFloat, ShortSourcesAreCopiedWhole) {
    const Words source{0, 7};
    for (std::uint64_t p : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{100}, UINT64_MAX}) {
        GuardedBigFloat x(2);
        x.number.set_BigFloat(sequential(), view_of(source, 4), p);
        expect_number(x.number, source, 4);
    }
}

TEST(BigFloatSetBigFloat, ZeroAndCapacity) {
    GuardedBigFloat x(4);
    x.number.sign = 0;
    x.number.set_BigFloat(sequential(), {nullptr, 0, 17, 0}, 3);
    expect_zero(x.number);
    const Words source(10, 1);
    expect_buffer_too_small([&] { x.number.set_BigFloat(sequential(), view_of(source), 3); },
                            "BigFloat::set_BigFloat()", 4, 5);
}

TEST(BigFloatSetDouble, Zeros) {
    for (double zero : {0.0, -0.0}) {
        GuardedBigFloat x(0);
        x.number.sign = 0;
        x.number.set_double(zero, 5);
        expect_zero(x.number);
    }
}

TEST(BigFloatSetDouble, OneIsTwoWords) {
    GuardedBigFloat x(2);
    x.number.set_double(1.0, 0);
    expect_number(x.number, {0, 1}, -1);
    GuardedBigFloat small(1);
    expect_buffer_too_small([&] { small.number.set_double(1.0, 0); }, "BigFloat::mul_uW()", 1, 2);
    GuardedBigFloat none(0);
    expect_buffer_too_small([&] { none.number.set_double(1.0, 0); }, "BigFloat::set_double()", 0, 1);
}

double value_of(qmp::BigFloatView x) {
    double value = 0;
    for (std::uint64_t i = 0; i < x.L; ++i) {
        value += std::ldexp(static_cast<double>(x.T[i]),
                            static_cast<int>(64 * (x.exp + static_cast<std::int64_t>(i))));
    }
    return x.sign ? value : -value;
}

TEST(BigFloatSetDouble, EveryKindOfDoubleIsExact) {
    for (double d :
         {1.0, 0.5, 3.0, 1.5, 1e300, 1e-300, 0x1p52, 0x1p53, 0x1.fffffffffffffp0, 0x1.fffffffffffffp63,
          0x1p64, 0x1p-64, 0x1p-1, DBL_MAX, DBL_MIN, DBL_TRUE_MIN, 0x1.8p-1074, 0x0.8000000000001p-1022}) {
        for (double x : {d, -d}) {
            GuardedBigFloat number(2);
            number.number.set_double(x, 0);
            number.number.check_normalization();
            EXPECT_EQ(value_of(number.number), x);
            GuardedBigFloat scaled(2);
            scaled.number.set_double(x, -37);
            EXPECT_EQ(scaled.number.exp, number.number.exp - 37);
            EXPECT_EQ(words_of(scaled.number), words_of(number.number));
        }
    }
}

TEST(BigFloatMulWord, SpecialFactors) {
    const Words words{1, 2, 3};
    GuardedBigFloat x(3);
    x.number.set_BigFloat(sequential(), view_of(words, 4, 0), 10);
    x.number.mul_uW(sequential(), 1);  // there is no room for a further word, and none is asked for
    expect_number(x.number, words, 4, 0);
    expect_buffer_too_small([&] { x.number.mul_uW(sequential(), 2); }, "BigFloat::mul_uW()", 3, 4);
    x.number.mul_uW(sequential(), 0);
    expect_zero(x.number);
    x.number.mul_uW(sequential(), 5);
    expect_zero(x.number);
}

TEST(BigFloatMulWord, GrowsInPlaceAboveAnAdvancedStart) {
    GuardedBigFloat x(5);
    x.number.set_BigFloat(sequential(), view_of({9, 9, all_ones, all_ones}), 10);
    x.number.truncate_to(2);
    EXPECT_EQ(x.number.T, x.number.base + 2);
    x.number.mul_uW(sequential(), all_ones);
    expect_number(x.number, {1, all_ones, all_ones - 1}, 2);
    expect_buffer_too_small([&] { x.number.mul_uW(sequential(), 2); }, "BigFloat::mul_uW()", 5, 6);
}

TEST(BigFloatSetMulWord, WritesAnotherObject) {
    Random random(1);
    for (std::uint64_t n : {1, 2, 5, 40}) {
        for (Word w : {Word{0}, Word{1}, Word{2}, all_ones, random.next()}) {
            const Words words = make_words(random, n, Pattern::runs);
            GuardedBigFloat x(n + 1);
            GuardedBigFloat y(n + 1);
            x.number.set_mul_uW(sequential(), view_of(words, -7, 0), w);
            y.number.set_BigFloat(sequential(), view_of(words, -7, 0), 100);
            y.number.mul_uW(sequential(), w);
            EXPECT_EQ(words_of(x.number), words_of(y.number));
            EXPECT_EQ(x.number.exp, y.number.exp);
            EXPECT_EQ(x.number.sign, y.number.sign);
        }
    }
    GuardedBigFloat small(2);
    expect_buffer_too_small(
        [&] {
            small.number.set_mul_uW(sequential(), view_of({1, 2}), 3);
        },
        "BigFloat::set_mul_uW()", 2, 3);
}

TEST(BigFloatAddWord, InTheMiddleAndOnTop) {
    GuardedBigFloat x(5);
    x.number.set_BigFloat(sequential(), view_of({1, all_ones, all_ones}, -1), 10);
    x.number.add_ip(1, 0);
    expect_number(x.number, {1, 0, 0, 1}, -1);
    x.number.add_ip(7, 3);  // exactly above the top
    expect_number(x.number, {1, 0, 0, 1, 7}, -1);
    expect_buffer_too_small([&] { x.number.add_ip(1, 0); }, "BigFloat::add_ip()", 5, 6);
    GuardedBigFloat y(2);
    y.number.set_BigFloat(sequential(), view_of({4}, 3), 1);
    y.number.add_ip(0, 4);
    expect_number(y.number, {4}, 3);
}

#if GTEST_HAS_DEATH_TEST
TEST(BigFloatAddWordDeathTest, OutOfRange) {
    const char* text = "BigFloat::add_ip\\(\\): Magnitude is out of range\\.";
    GuardedBigFloat x(9);
    EXPECT_FATAL(x.number.add_ip(1, 0), text);
    x.number.set_BigFloat(sequential(), view_of({1, 1}, 3), 10);
    EXPECT_FATAL(x.number.add_ip(1, 2), text);
    EXPECT_FATAL(x.number.add_ip(1, 6), text);
}
#endif

TEST(BigFloatParallel, LongCopiesAndWordProductsAreTheSame) {
    Random random(4);
    const auto framework = qmp::make_default_parallelizer();
    const Words words = make_words(random, 90001, Pattern::runs);
    GuardedBigFloat one(90002);
    GuardedBigFloat many(90002);
    one.number.set_BigFloat(sequential(), view_of(words, 3), 1000000);
    many.number.set_BigFloat({7, framework.get()}, view_of(words, 3), 1000000);
    EXPECT_TRUE(words_of(many.number) == words);
    one.number.mul_uW(sequential(), 0xfedcba9876543211);
    many.number.mul_uW({4, framework.get()}, 0xfedcba9876543211);
    EXPECT_TRUE(words_of(one.number) == words_of(many.number));
}

}  // namespace
