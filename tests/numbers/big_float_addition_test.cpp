// Sums, differences and comparisons.
#include <gtest/gtest.h>

#include "numbers/big_float.h"
#include "numbers/expect_errors.h"
#include "numbers/number_buffers.h"
#include "numbers/reference_integer.h"

namespace {

using namespace kelvara_test;
using qmp::BigFloat;
using qmp::BigFloatView;
using qmp::ParallelContext;
using qmp::ucmp;

ParallelContext sequential() {
    return ParallelContext::sequential();
}

constexpr BigFloatView zero{nullptr, 0, 0, 1};

TEST(BigFloatCompare, Magnitudes) {
    const Words one{1};
    const Words padded{0, 0, 1};
    const Words more{1, 0, 1};
    EXPECT_EQ(ucmp(zero, zero), 0);
    EXPECT_EQ(ucmp(view_of(one, -100), zero), 1);
    EXPECT_EQ(ucmp(zero, view_of(one, -100)), -1);
    EXPECT_EQ(ucmp(view_of(one, 1), view_of(one, 0)), 1);
    EXPECT_EQ(ucmp(view_of({all_ones}, 0), view_of(one, 1)), -1);
    EXPECT_EQ(ucmp(view_of(one, 2), view_of(padded, 0)), 0) << "low zero words do not count";
    EXPECT_EQ(ucmp(view_of(padded, 0), view_of(one, 2)), 0);
    EXPECT_EQ(ucmp(view_of(one, 2), view_of(more, 0)), -1);
    EXPECT_EQ(ucmp(view_of(more, 0), view_of(one, 2)), 1);
    EXPECT_EQ(ucmp(view_of(one, 0, 0), view_of(one, 0, 1)), 0) << "signs do not count";
    EXPECT_EQ(ucmp(view_of({2, 5}), view_of({1, 5})), 1);
}

TEST(BigFloatAdd, DropsWhatLiesBelowTheWindow) {
    GuardedBigFloat x(5);
    x.number.set_uadd(sequential(), view_of({1}), view_of({1}, -10), 3);
    expect_number(x.number, {0, 0, 0, 1}, -3);
}

TEST(BigFloatAdd, CarriesAcrossBlocks) {
    const Words ones(300, all_ones);
    GuardedBigFloat x(301);
    x.number.set_uadd(sequential(), view_of(ones), view_of({1}), 1000);
    Words expected(301, 0);
    expected[300] = 1;
    expect_number(x.number, expected, 0);
}

TEST(BigFloatAdd, ZeroOperandsCopyTheOther) {
    const Words words{1, 2, 3, 4};
    GuardedBigFloat x(4);
    x.number.set_uadd(sequential(), zero, view_of(words, 5, 0), 1);
    expect_number(x.number, {2, 3, 4}, 6, 0);
    x.number.set_uadd(sequential(), view_of(words, 5), zero, 9);
    expect_number(x.number, words, 5);
    x.number.set_usub(sequential(), view_of(words, 5), zero, 9);
    expect_number(x.number, words, 5);
    x.number.set_uadd(sequential(), zero, zero, 9);
    expect_zero(x.number);
}

TEST(BigFloatSubtract, ZeroMinusSomethingIsAZeroWithTheSignFlagInverted) {
    GuardedBigFloat x(4);
    x.number.set_usub(sequential(), zero, view_of({1, 2}), 5);
    EXPECT_EQ(x.number.L, 0u);
    EXPECT_EQ(x.number.sign, 0);
}

TEST(BigFloatSubtract, EqualNumbersGiveZero) {
    GuardedBigFloat x(400);
    const Words words(300, 7);
    x.number.set_usub(sequential(), view_of(words, 9), view_of(words, 9), 1000);
    expect_zero(x.number);
    x.number.set_usub(sequential(), view_of({0, 1}, 0), view_of({1}, 1), 1000);
    expect_zero(x.number);
}

// |a| +- |b| from the window's bottom up, by whole numbers.
Words combined(BigFloatView a, BigFloatView b, std::int64_t bottom, bool add) {
    const Words words_a = magnitude_from(a, bottom);
    const Words words_b = magnitude_from(b, bottom);
    return add ? sum(words_a, words_b) : difference(words_a, words_b);
}

TEST(BigFloatAddSubtract, SignedAgainstWholeNumbers) {
    Random random(1);
    for (int i = 0; i < 4000; ++i) {
        const Words a = make_words(random, random.between(1, i % 10 == 0 ? 400 : 8), all_patterns[i % 5]);
        const Words b = make_words(random, random.between(1, i % 10 == 0 ? 400 : 8), all_patterns[i / 5 % 5]);
        const std::uint64_t p = random.between(0, i % 10 == 0 ? 500 : 12);
        const BigFloatView va =
            view_of(a, static_cast<std::int64_t>(random.between(0, 16)) - 8, random.next() & 1);
        const BigFloatView vb =
            view_of(b, static_cast<std::int64_t>(random.between(0, 16)) - 8, random.next() & 1);
        const std::int64_t top = std::max(va.top(), vb.top());
        const std::int64_t bottom =
            std::max(top - static_cast<std::int64_t>(p) - 1, std::min(va.exp, vb.exp));
        const auto length = static_cast<std::uint64_t>(top - bottom);
        for (bool subtract : {false, true}) {
            const bool adds = (va.sign == vb.sign) != subtract;
            const int order = ucmp(va, vb);
            const Words expected =
                adds || order >= 0 ? combined(va, vb, bottom, adds) : combined(vb, va, bottom, false);
            const std::uint8_t sign = adds || order > 0 ? va.sign : !va.sign;

            GuardedBigFloat x(adds ? length + 1 : length);
            if (subtract) {
                x.number.set_sub(sequential(), va, vb, p);
            } else {
                x.number.set_add(sequential(), va, vb, p);
            }
            if (expected.empty()) {
                expect_zero(x.number);
            } else {
                expect_number(x.number, expected, bottom, sign);
            }
        }
    }
}

TEST(BigFloatAddSubtract, SignsOfZero) {
    GuardedBigFloat x(4);
    const Words words{3};
    x.number.set_add(sequential(), zero, view_of(words, 0, 0), 1);
    expect_number(x.number, words, 0, 0);
    x.number.set_add(sequential(), view_of(words, 0, 0), zero, 1);
    expect_number(x.number, words, 0, 0);
    x.number.set_sub(sequential(), zero, view_of(words, 0, 1), 1);
    expect_number(x.number, words, 0, 0);
    x.number.set_sub(sequential(), zero, view_of(words, 0, 0), 1);
    expect_number(x.number, words, 0, 1);
    x.number.set_add(sequential(), view_of(words, 0, 0), view_of(words, 0, 1), 1);
    expect_zero(x.number);
    // 1 - (1 - 2^-640) with the difference below the window.
    const Words nearly_one(10, all_ones);
    x.number.set_sub(sequential(), view_of({1}, 0, 0), view_of(nearly_one, -10, 0), 2);
    expect_number(x.number, {1}, -2, 0);
    x.number.set_sub(sequential(), view_of({1, 0, 0, 0, 1}, 0, 0), view_of({1}, 4, 0), 2);
    expect_zero(x.number);
}

TEST(BigFloatAddSubtract, CapacityErrors) {
    GuardedBigFloat x(4);
    const Words a(4, 9);
    const Words b(5, 1);
    expect_buffer_too_small([&] { x.number.set_uadd(sequential(), view_of(a), view_of(a), 9); },
                            "BigFloat::set_uadd()", 4, 5);
    expect_buffer_too_small([&] { x.number.set_usub(sequential(), view_of(b), view_of(a), 9); },
                            "BigFloat::set_usub()", 4, 5);
    x.number.set_usub(sequential(), view_of(a), view_of({1}), 9);
    expect_number(x.number, {8, 9, 9, 9}, 0);
    expect_buffer_too_small([&] { x.number.set_rsub(view_of(a), view_of(b), 0, 4, 1); },
                            "BigFloat::set_rsub()", 4, 5);
}

TEST(BigFloatReverseSubtract, WindowFixedByTheCaller) {
    // Words [-2, 2) of 5*R^2 + 3 - 7*R^-1: the word at position 2 is outside.
    GuardedBigFloat x(4);
    x.number.set_rsub(view_of({3, 0, 5}), view_of({7}, -1), 2, 3, 0);
    expect_number(x.number, {0, all_ones - 6, 2}, -2, 0);
    // A borrow out of the window's top is dropped.
    x.number.set_rsub(view_of({1}, 5), view_of({1}), 2, 3, 1);
    expect_number(x.number, {0, 0, all_ones, all_ones}, -2);
    x.number.set_rsub(view_of({4}), view_of({4}), 2, 3, 0);
    expect_zero(x.number);
    // Words below the window are dropped from both operands.
    x.number.set_rsub(view_of({9, 0, 0, 0, 8}, -4), view_of({all_ones, all_ones}, -4), 2, 3, 1);
    expect_number(x.number, {0, 0, 8}, -2);
}

TEST(BigFloatReverseSubtract, BlocksOfLongWindows) {
    Random random(2);
    for (std::uint64_t n : {127, 128, 129, 256, 300}) {
        const Words a = make_words(random, n, Pattern::runs);
        Words b = make_words(random, n, Pattern::runs);
        b.back() = 0;
        const Words expected = difference(a, b);
        trim(b);
        GuardedBigFloat x(n);
        x.number.set_rsub(view_of(a), view_of(b), static_cast<std::int64_t>(n), n - 1, 1);
        EXPECT_EQ(words_of(x.number), expected);
    }
}

}  // namespace
