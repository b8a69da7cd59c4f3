#include "numbers/exact_float.h"

#include <gtest/gtest.h>

#include "errors/exception.h"
#include "numbers/expect_errors.h"
#include "numbers/number_buffers.h"

namespace {

using namespace kelvara_test;
using qmp::ExactFloat;
using qmp::Word;

void expect_exact(const ExactFloat& number, const Words& words, std::int64_t exp) {
    EXPECT_EQ(Words(number.T, number.T + number.L), words);
    EXPECT_EQ(number.exp, exp);
    EXPECT_EQ(number.hash, check_value_of(number.T, number.L, number.exp));
}

TEST(ExactFloat, CheckValuesOfOneWord) {
    EXPECT_EQ(exact_view({1}, 1).hash, 8u);
    EXPECT_EQ(exact_view({1}, -1).hash, std::uint64_t{1} << 58);
}

TEST(ExactFloat, SetFromAWord) {
    GuardedExactFloat x(2);
    x.number.T = x.number.base + 1;  // setters start at the buffer's beginning
    x.number.set_uW(all_ones);
    expect_exact(x.number, {all_ones}, 0);
    EXPECT_EQ(x.number.T, x.number.base);
    expect_exception<qmp::UnsupportedZeroException>([&] { x.number.set_uW(0); }, "ExactFloat::set_uW()",
                                                    "Zero was encountered.");
}

TEST(ExactFloat, Copies) {
    Random random(1);
    const Words words = make_words(random, 10);
    GuardedExactFloat x(10);
    x.number.set_ExactFloat(exact_view(words, -3));
    expect_exact(x.number, words, -3);
    GuardedExactFloat small(9);
    expect_buffer_too_small([&] { small.number.set_ExactFloat(exact_view(words)); },
                            "ExactFloat::set_ExactFloat()", 9, 10);
}

TEST(ExactFloat, MultipliesByPowersOfTwo) {
    GuardedExactFloat x(3);
    x.number.set_uW(5);
    x.number.mp2(3);
    expect_exact(x.number, {40}, 0);
    x.number.mp2(64 * 7);
    expect_exact(x.number, {40}, 7);
    x.number.mp2(-1);  // 63 bits up, one word down
    expect_exact(x.number, {0, 20}, 6);
    x.number.mp2(-64 * 9 - 2);
    expect_exact(x.number, {0, 0, 5}, -4);
    x.number.mp2(0);
    expect_exact(x.number, {0, 0, 5}, -4);
}

TEST(ExactFloat, PowersOfTwoUndoEachOther) {
    Random random(2);
    for (int i = 0; i < 200; ++i) {
        const std::uint64_t n = random.between(1, 12);
        const auto k = static_cast<std::int64_t>(random.between(0, 1000)) - 500;
        const Words words = make_words(random, n, all_patterns[i % 5]);
        GuardedExactFloat x(n + 2);
        x.number.set_ExactFloat(exact_view(words, 4));
        x.number.mp2(k);
        EXPECT_EQ(x.number.hash, check_value_of(x.number.T, x.number.L, x.number.exp));
        x.number.mp2(-k);
        EXPECT_EQ(x.number.hash, exact_view(words, 4).hash);
        // The words may have moved up by one.
        const bool moved = x.number.T[0] == 0 && x.number.exp == 3;
        EXPECT_EQ(Words(x.number.T + moved, x.number.T + x.number.L), words);
    }
}

TEST(ExactFloat, PowersOfTwoNeedRoomOnlyWhenTheNumberGrows) {
    GuardedExactFloat x(2);
    x.number.set_ExactFloat(exact_view({1, 1}));
    x.number.mp2(63);
    expect_exact(x.number, {Word{1} << 63, Word{1} << 63}, 0);
    expect_buffer_too_small([&] { x.number.mp2(1); }, "ExactFloat::mp2()", 2, 3);
    expect_exact(x.number, {Word{1} << 63, Word{1} << 63}, 0);
    x.number.AL = 1;
    expect_buffer_too_small([&] { x.number.mp2(64); }, "ExactFloat::mp2()", 1, 2);
}

TEST(ExactFloat, StripsLowZeroWordsByEights) {
    for (std::uint64_t zeros : {0, 1, 7, 8, 9, 15, 16, 17}) {
        Words words(zeros + 2, 3);
        std::fill_n(words.begin(), zeros, 0);
        GuardedExactFloat x(zeros + 2);
        x.number.set_ExactFloat(exact_view(words, -20));
        x.number.strip_low_zero_words();
        const std::uint64_t dropped = zeros / 8 * 8;
        EXPECT_EQ(x.number.T, x.number.base + dropped);
        expect_exact(x.number, Words(words.begin() + static_cast<std::ptrdiff_t>(dropped), words.end()),
                     static_cast<std::int64_t>(dropped) - 20);
    }
}

TEST(ExactFloat, Products) {
    SmallProducts products;
    Random random(3);
    for (std::uint64_t la = 1; la <= 24; ++la) {
        for (std::uint64_t lb = 1; lb <= 24; ++lb) {
            const Words a = make_words(random, la, all_patterns[(la + lb) % 5]);
            const Words b = make_words(random, lb, all_patterns[la % 5]);
            GuardedExactFloat product(la + lb);
            product.number.set_mul(products.context(), exact_view(a, 5), exact_view(b, -9));
            EXPECT_EQ(product.number.exp, -4);
            EXPECT_NE(product.number.T[product.number.L - 1], 0u);
            EXPECT_EQ(product.number.hash, check_value_of(product.number.T, product.number.L, -4));
            EXPECT_EQ(product.number.hash, qmp::check_mul(exact_view(a, 5).hash, exact_view(b, -9).hash));
        }
    }
}

TEST(ExactFloat, ProductsNeedRoomForBothLengths) {
    SmallProducts products;
    GuardedExactFloat product(4);
    expect_buffer_too_small(
        [&] {
            product.number.set_mul(products.context(), exact_view({1, 1}), exact_view({1, 1, 1}));
        },
        "ExactFloat::set_mul()", 4, 5);
}

}  // namespace
