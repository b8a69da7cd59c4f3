// Exact sums in all layouts of two operands, and exact differences.
#include <gtest/gtest.h>

#include "errors/exception.h"
#include "numbers/exact_float.h"
#include "numbers/expect_errors.h"
#include "numbers/number_buffers.h"
#include "platform/parallel/registry.h"
#include "support/fatal.h"

namespace {

using namespace kelvara_test;
using qmp::ExactFloat;
using qmp::ParallelContext;
using qmp::Word;

ParallelContext sequential() {
    return ParallelContext::sequential();
}

// The sum word by word from position `bottom`; without top zero words.
Words reference_sum(const Words& a, std::int64_t exp_a, const Words& b, std::int64_t exp_b,
                    std::int64_t bottom, std::int64_t top) {
    Words sum;
    Word carry = 0;
    const auto word_at = [](const Words& words, std::int64_t index) {
        return index >= 0 && index < static_cast<std::int64_t>(words.size())
                   ? words[static_cast<std::size_t>(index)]
                   : Word{0};
    };
    for (std::int64_t k = bottom; k <= top; ++k) {
        const qmp::DoubleWord s =
            static_cast<qmp::DoubleWord>(word_at(a, k - exp_a)) + word_at(b, k - exp_b) + carry;
        sum.push_back(qmp::low_word(s));
        carry = qmp::high_word(s);
    }
    while (!sum.empty() && sum.back() == 0) sum.pop_back();
    return sum;
}

TEST(ExactFloatSum, EveryLayoutOfTwoOperands) {
    Random random(1);
    for (std::uint64_t la = 1; la <= 6; ++la) {
        for (std::uint64_t lb = 1; lb <= 6; ++lb) {
            for (std::int64_t exp_b = -10; exp_b <= 10; ++exp_b) {
                for (Pattern pattern : all_patterns) {
                    const Words a = make_words(random, la, pattern);
                    const Words b = make_words(random, lb, pattern);
                    const auto bottom = std::min<std::int64_t>(0, exp_b);
                    const auto top =
                        std::max(static_cast<std::int64_t>(la), exp_b + static_cast<std::int64_t>(lb));
                    const auto length = static_cast<std::uint64_t>(top - bottom);
                    GuardedExactFloat sum(length + 1);
                    sum.number.set_add(sequential(), exact_view(a), exact_view(b, exp_b));
                    EXPECT_EQ(Words(sum.number.T, sum.number.T + sum.number.L),
                              reference_sum(a, 0, b, exp_b, bottom, top));
                    EXPECT_EQ(sum.number.exp, bottom);
                    EXPECT_EQ(sum.number.hash, check_value_of(sum.number.T, sum.number.L, sum.number.exp));

                    GuardedExactFloat small(length);
                    expect_buffer_too_small(
                        [&] { small.number.set_add(sequential(), exact_view(b, exp_b), exact_view(a)); },
                        "ExactFloat::set_add()", length, length + 1);
                }
            }
        }
    }
}

TEST(ExactFloatSum, LongOperandsInParallelAreTheSame) {
    Random random(2);
    const auto framework = qmp::make_default_parallelizer();
    const Words a = make_words(random, 70000, Pattern::ones);
    const Words b = make_words(random, 60000, Pattern::runs);
    for (std::int64_t exp_b : {-80000, -60001, -60000, -5, 0, 5, 10000}) {
        GuardedExactFloat one(200000);
        GuardedExactFloat many(200000);
        one.number.set_add(sequential(), exact_view(a), exact_view(b, exp_b));
        many.number.set_add({5, framework.get()}, exact_view(b, exp_b), exact_view(a));
        EXPECT_EQ(one.number.hash, many.number.hash);
        EXPECT_TRUE(Words(one.number.T, one.number.T + one.number.L) ==
                    Words(many.number.T, many.number.T + many.number.L));
    }
}

TEST(ExactFloatDifference, UndoesAnAddition) {
    Random random(3);
    for (int i = 0; i < 500; ++i) {
        const std::uint64_t la = random.between(1, 12);
        const std::uint64_t lb = random.between(1, la);
        const auto exp_b = static_cast<std::int64_t>(random.between(0, la - lb));
        const Words a = make_words(random, la, all_patterns[i % 5]);
        const Words b = make_words(random, lb, all_patterns[i / 5 % 5]);
        GuardedExactFloat x(la + 2);
        x.number.set_add(sequential(), exact_view(a), exact_view(b, exp_b));
        x.number -= exact_view(b, exp_b);
        EXPECT_EQ(Words(x.number.T, x.number.T + x.number.L), a);
        EXPECT_EQ(x.number.hash, exact_view(a).hash);
    }
}

TEST(ExactFloatDifference, KeepsLowZeroWords) {
    GuardedExactFloat x(4);
    x.number.set_ExactFloat(exact_view({5, 6, 1}, 2));
    x.number -= exact_view({5, 6}, 2);
    EXPECT_EQ(Words(x.number.T, x.number.T + x.number.L), (Words{0, 0, 1}));
    EXPECT_EQ(x.number.exp, 2);
    EXPECT_EQ(x.number.hash, exact_view({1}, 4).hash);
}

TEST(ExactFloatDifference, NegativeAndZero) {
    const char* function = "ExactFloat::operator-=()";
    GuardedExactFloat x(4);
    x.number.set_ExactFloat(exact_view({5, 6, 7}));
    expect_exception<qmp::UnsupportedNegativeException>(
        [&] {
            x.number -= exact_view({6, 6, 7});
        },
        function, "A negative value was encountered.");
    x.number.set_ExactFloat(exact_view({5, 6, 7}));
    expect_exception<qmp::UnsupportedZeroException>(
        [&] {
            x.number -= exact_view({5, 6, 7});
        },
        function, "Zero was encountered.");
}

#if GTEST_HAS_DEATH_TEST
TEST(ExactFloatDifferenceDeathTest, TheViewMustLieInside) {
    GuardedExactFloat x(4);
    x.number.set_ExactFloat(exact_view({5, 6, 7}, 2));
    const char* text = "Invalid Function Parameters:";
    EXPECT_CRASH(x.number -= exact_view({1, 1, 1, 1}, 2), text);
    EXPECT_CRASH(x.number -= exact_view({1}, 1), text);
    EXPECT_CRASH(x.number -= exact_view({1, 1}, 4), text);
    x.number.AL = 3;
    EXPECT_CRASH(x.number -= exact_view({1}, 2), text);
}
#endif

}  // namespace
