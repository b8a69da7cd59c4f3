#include "numbers/basic_int.h"

#include <gtest/gtest.h>

#include "errors/exception.h"
#include "numbers/expect_errors.h"
#include "numbers/number_buffers.h"
#include "support/fatal.h"

#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace {

using namespace kelvara_test;
using qmp::BasicInt;
using qmp::BasicIntView;
using qmp::Word;

BasicIntView view(const Words& words) {
    return {words.data(), words.size(), check_value_of(words.data(), words.size(), 0)};
}

struct Integer {
    explicit Integer(std::uint64_t capacity) : buffer(capacity), number(buffer.data(), capacity) {}
    Integer(const Words& words, std::uint64_t capacity) : Integer(capacity) {
        std::copy(words.begin(), words.end(), number.T);
        number.L = words.size();
        number.hash = view(words).hash;
    }
    Words words() const { return {number.T, number.T + number.L}; }
    void expect_consistent() const {
        EXPECT_TRUE(number.L == 0 || number.T[number.L - 1] != 0);
        EXPECT_EQ(number.hash, check_value_of(number.T, number.L, 0));
    }
    WatchedWords buffer;
    BasicInt number;
};

TEST(BasicInt, AddsWithCarryIntoANewWord) {
    Integer sum(Words(9, all_ones), 10);
    sum.number += view({1});
    Words expected(10, 0);
    expected[9] = 1;
    EXPECT_EQ(sum.words(), expected);
    sum.expect_consistent();
}

TEST(BasicInt, AddThenSubtractRestores) {
    Random random(1);
    for (std::uint64_t la = 1; la <= 20; ++la) {
        for (std::uint64_t lb = 1; lb <= la; ++lb) {
            for (Pattern pattern : all_patterns) {
                const Words a = make_words(random, la, pattern);
                const Words b = make_words(random, lb, pattern);
                Integer number(a, la + 2);
                number.number += view(b);
                number.expect_consistent();
                number.number -= view(b);
                number.expect_consistent();
                EXPECT_EQ(number.words(), a);
            }
        }
    }
}

TEST(BasicInt, SubtractionStripsTopZeroWords) {
    Integer number({7, 5, 0, 0, 0, 1}, 7);
    number.number -= view({6, 5, 0, 0, 0, 1});
    EXPECT_EQ(number.words(), Words{1});
    number.expect_consistent();
}

TEST(BasicInt, SubtractionBorrowsThroughZeroWords) {
    Integer number({0, 0, 0, 0, 0, 1}, 7);
    number.number -= view({1});
    EXPECT_EQ(number.words(), Words(5, all_ones));
    number.expect_consistent();
}

TEST(BasicInt, EqualValuesGiveTheZeroError) {
    Integer number({3, 4, 5}, 4);
    expect_exception<qmp::UnsupportedZeroException>(
        [&] {
            number.number -= view({3, 4, 5});
        },
        "BasicInt::operator-=()", "Zero was encountered.");
}

TEST(BasicInt, NegativeDifferences) {
    const char* function = "BasicInt::operator-=()";
    const char* text = "A negative value was encountered.";
    Integer shorter({all_ones}, 2);
    expect_exception<qmp::UnsupportedNegativeException>(
        [&] {
            shorter.number -= view({0, 1});
        },
        function, text);
    Integer smaller({3, 4, 5}, 4);
    expect_exception<qmp::UnsupportedNegativeException>(
        [&] {
            smaller.number -= view({4, 4, 5});
        },
        function, text);
}

TEST(BasicInt, CapacityErrors) {
    Integer number({1, 2, 3}, 3);
    expect_buffer_too_small([&] { number.number += view({1}); }, "BasicInt::operator+=()", 3, 4);
    expect_buffer_too_small([&] { number.number -= view({1}); }, "BasicInt::operator-=()", 3, 4);
    EXPECT_EQ(number.words(), (Words{1, 2, 3})) << "untouched";
    expect_buffer_too_small(
        [&] {
            number.number.set_mulB(view({1, 2}), view({3, 4}));
        },
        "BasicIntR::set_mulB()", 3, 4);
}

#if GTEST_HAS_DEATH_TEST
TEST(BasicIntDeathTest, ALongerAddendIsAnInvalidParameter) {
    Integer number({1, 2}, 10);
    EXPECT_CRASH(number.number += view({1, 2, 3}), "Invalid Function Parameters:");
}
#endif

TEST(BasicInt, Products) {
    Random random(2);
    for (std::uint64_t la = 1; la <= 24; ++la) {
        for (std::uint64_t lb = 1; lb <= 24; ++lb) {
            for (Pattern pattern : all_patterns) {
                const Words a = make_words(random, la, pattern);
                const Words b = make_words(random, lb, pattern);
                Integer product(la + lb);
                product.number.set_mulB(view(a), view(b));
                product.expect_consistent();
                EXPECT_EQ(product.number.hash, qmp::check_mul(view(a).hash, view(b).hash));
                Integer swapped(la + lb);
                swapped.number.set_mulB(view(b), view(a));
                EXPECT_EQ(product.words(), swapped.words());
#ifdef KELVARA_HAVE_GMP
                Words expected(la + lb);
                mpn_mul(expected.data(), la >= lb ? a.data() : b.data(), std::max(la, lb),
                        la >= lb ? b.data() : a.data(), std::min(la, lb));
                if (expected.back() == 0) expected.pop_back();
                EXPECT_EQ(product.words(), expected);
#endif
            }
        }
    }
}

TEST(BasicInt, ProductWithNothingIsEmpty) {
    Integer product(3);
    product.number.set_mulB(view({}), view({1, 2, 3}));
    EXPECT_EQ(product.number.L, 0u);
    EXPECT_EQ(product.number.hash, 0u);
}

}  // namespace
