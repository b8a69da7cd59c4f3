#include <gtest/gtest.h>

#include "numbers/expect_errors.h"
#include "numbers/newton_expectations.h"
#include "numbers/newton_fixture.h"
#include "platform/parallel/registry.h"

namespace {

using namespace kelvara_test;
using qmp::BigFloatView;
using qmp::Word;

void divide(NewtonMemory& memory, GuardedBigFloat& q, BigFloatView a, BigFloatView b, std::uint64_t p) {
    WatchedWords scratch(qmp::division_scratch_words(p));
    BigFloatR_div_P(memory.context(), q.number, a, b, p, scratch.data(), scratch.size(), nullptr);
}

void expect_division(NewtonMemory& memory, const Words& a, const Words& b, std::uint64_t p, Random& random) {
    const auto exp_a = static_cast<std::int64_t>(random.between(0, 40)) - 20;
    const auto exp_b = static_cast<std::int64_t>(random.between(0, 40)) - 20;
    const BigFloatView va = view_of(a, exp_a, random.next() & 1);
    const BigFloatView vb = view_of(b, exp_b, random.next() & 1);
    GuardedBigFloat q(p + 3);
    divide(memory, q, va, vb, p);
    expect_quotient(q.number, va, vb, p);
    EXPECT_LE(q.number.L, p + 2) << "room for one word more";
}

TEST(Division, EveryPrecisionTo300) {
    Random random(1);
    for (std::uint64_t p = 1; p <= 300; ++p) {
        NewtonMemory memory(p);
        const auto lengths = lengths_around(p);
        for (std::size_t i = 0; i < lengths.size(); ++i) {
            if (p > 40 && i != p % lengths.size()) continue;
            const auto dividends = hard_operands(random, lengths[(i * 5 + p) % lengths.size()]);
            const auto divisors = hard_operands(random, lengths[i]);
            for (std::size_t k = 0; k < divisors.size(); ++k) {
                expect_division(memory, dividends[(k * 7 + i) % dividends.size()], divisors[k], p, random);
            }
        }
    }
}

TEST(Division, LongPrecisions) {
    Random random(2);
    for (std::uint64_t p : {511, 512, 1000, 1025, 2048, 4000}) {
        NewtonMemory memory(p);
        for (std::uint64_t length : {std::uint64_t{1}, p / 2, p + 2, 2 * p}) {
            const auto dividends = hard_operands(random, length);
            const auto divisors = hard_operands(random, p + 3 - length % 5);
            for (std::size_t k = p % 4; k < divisors.size(); k += 4) {
                expect_division(memory, dividends[k % dividends.size()], divisors[k], p, random);
            }
        }
    }
}

// The residual is zero, or the quotient's estimate is one unit off on either side of it.
TEST(Division, ExactlyDivisible) {
    Random random(3);
    for (std::uint64_t p : {1, 2, 5, 9, 10, 11, 12, 16, 20, 31, 48, 100, 200}) {
        NewtonMemory memory(p);
        for (std::uint64_t lb : {std::uint64_t{1}, std::uint64_t{2}, (p + 1) / 2, p}) {
            for (const Words& b : hard_operands(random, lb)) {
                for (std::uint64_t lq : {std::uint64_t{1}, std::uint64_t{3}, (p + 1) / 2}) {
                    expect_division(memory, product(b, make_words(random, lq, all_patterns[p % 5])), b, p,
                                    random);
                }
            }
        }
    }
}

// The lowest word of a short dividend lies at the boundary of what is known beforehand, where the product of
// estimate and divisor is lower by one and continues with words of all ones.
TEST(Division, ShortDividendsEndingAtTheKnownTop) {
    Random random(4);
    for (std::uint64_t p = 10; p <= 80; ++p) {
        NewtonMemory memory(p);
        const std::uint64_t half = (p + 1) / 2;
        for (std::uint64_t length = half > 6 ? half - 6 : 1; length <= half; ++length) {
            for (int i = 0; i < 6; ++i) {
                expect_division(memory, make_words(random, length, all_patterns[i % 5]),
                                make_words(random, random.between(1, p + 4), all_patterns[i / 2]), p, random);
            }
        }
    }
}

TEST(Division, ByOneAndByPowersOfTheRadix) {
    Random random(5);
    for (std::uint64_t p : {1, 9, 10, 11, 33, 150}) {
        NewtonMemory memory(p);
        for (std::uint64_t length : lengths_around(p)) {
            for (const Words& a : hard_operands(random, length)) {
                expect_division(memory, a, {1}, p, random);
                expect_division(memory, a, {0, 0, 1}, p, random);
            }
        }
    }
}

TEST(Division, OfZeroDoesNotTouchTheDivisor) {
    NewtonMemory memory(20);
    GuardedBigFloat q(23);
    const BigFloatView nothing{nullptr, 7, 3, 1};
    BigFloatR_div_P(memory.context(), q.number, {nullptr, 0, 0, 1}, nothing, 20, nullptr, 0, nullptr);
    expect_zero(q.number);
}

TEST(Division, ByZero) {
    for (std::uint64_t p : {1, 9, 10, 30}) {
        NewtonMemory memory(p);
        GuardedBigFloat q(p + 3);
        expect_exception<qmp::ArithmeticException>(
            [&] {
                divide(memory, q, view_of({1}), {nullptr, 0, 0, 1}, p);
            },
            "BigFloatR_rcp_E()", "Divide by zero.");
    }
}

TEST(Division, OneWordLessThrows) {
    for (std::uint64_t p : {1, 2, 9, 10, 11, 40, 41}) {
        NewtonMemory memory(p);
        const std::uint64_t needed = qmp::division_scratch_words(p);
        WatchedWords scratch(needed);
        const auto compute = [&](std::uint64_t capacity, std::uint64_t scratch_words) {
            GuardedBigFloat q(capacity);
            BigFloatR_div_P(memory.context(), q.number, view_of({1}), view_of({3}), p, scratch.data(),
                            scratch_words, nullptr);
        };
        expect_buffer_too_small([&] { compute(p + 3, needed - 1); }, "BigFloatR_div_P()", needed - 1, needed);
        expect_buffer_too_small([&] { compute(p + 2, needed); }, "BigFloatR_div_P()", p + 2, p + 3);
        compute(p + 3, needed);
    }
    EXPECT_EQ(qmp::division_scratch_words(9), 27u);
    EXPECT_EQ(qmp::division_scratch_words(10), 30u);
    EXPECT_EQ(qmp::division_scratch_words(11), 33u);
}

TEST(Division, TheSameForEveryTaskCount) {
    Random random(6);
    const auto framework = qmp::make_default_parallelizer();
    for (std::uint64_t p : {9, 44, 290, 4000}) {
        const Words a = make_words(random, p + 1);
        const Words b = make_words(random, p - 1);
        Words first;
        for (std::uint64_t tasks : {1, 2, 5}) {
            NewtonMemory memory(p, {tasks, framework.get()});
            GuardedBigFloat q(p + 3);
            divide(memory, q, view_of(a), view_of(b), p);
            if (tasks == 1) first = words_of(q.number);
            EXPECT_TRUE(words_of(q.number) == first) << p << " words, " << tasks << " tasks";
        }
    }
}

}  // namespace
