#include "radix/convert.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "numbers/check_value.h"
#include "radix/convert_basecase.h"
#include "radix/convert_fixture.h"
#include "radix/convert_operands.h"
#include "radix/fractional_product.h"
#include "radix/hash.h"
#include "radix/recording.h"
#include "radix/thread_per_task.h"
#include "support/fatal.h"

namespace qmp {
namespace {

using kelvara_test::all_patterns;
using kelvara_test::conversion_fractions;
using kelvara_test::conversion_sizes;
using kelvara_test::make_words;
using kelvara_test::Pattern;
using kelvara_test::PlannedConversion;
using kelvara_test::Random;
using kelvara_test::ThreadPerTask;
using kelvara_test::top;
using kelvara_test::Words;

constexpr Word base = decimal_word_base;
const ParallelContext one_task = ParallelContext::sequential();

// m words and the guard word by the basecase alone, the guard in front.
Words by_basecase(Word radix, std::uint64_t m, const Words& fraction) {
    Words digits(m + 2, kelvara_test::garbage);
    Words work(std::min<std::uint64_t>(m + 2, fraction.size()) + 1, kelvara_test::garbage);
    digits[0] =
        convert_basecase(radix, digits.data() + m + 1, m, fraction.data(), fraction.size(), work.data());
    EXPECT_EQ(digits.back(), kelvara_test::garbage);
    EXPECT_EQ(work.back(), kelvara_test::garbage);
    digits.pop_back();
    return digits;
}

TEST(ConvertBasecase, ZeroAndOneHalf) {
    for (const std::uint64_t m : {1u, 2u, 15u, 16u, 40u}) {
        EXPECT_EQ(by_basecase(base, m, Words(m + 2, 0)), Words(m + 1, 0));
        EXPECT_EQ(by_basecase(base, m, {}), Words(m + 1, 0));
        Words half(m + 1, 0);
        half.back() = base / 2;
        EXPECT_EQ(by_basecase(base, m, {Word{1} << 63}), half);
    }
}

// 1/3 and 1/7 have known digits.
TEST(ConvertBasecase, RepeatingDigits) {
    const Words third(12, 0x5555555555555555);
    const Words digits = by_basecase(base, 10, third);
    EXPECT_EQ(digits, Words(11, 3333333333333333333));
}

TEST(ConvertBasecase, NoDigitsGiveTheGuardWordOnly) {
    EXPECT_EQ(by_basecase(base, 0, {0, Word{1} << 63}), Words{base / 2});
}

// Every length with a kernel of its own, and some beyond, against whole products of all words.
TEST(ConvertBasecase, EqualsWholeProducts) {
    Random random(13);
    for (const Word radix : {base, Word{2}, Word{10}, ~Word{0}}) {
        for (std::uint64_t m = 0; m < convert_basecase_words + 3; ++m) {
            for (std::uint64_t length = 0; length < m + 5; ++length) {
                for (const Pattern pattern : all_patterns) {
                    const Words fraction = make_words(random, length, pattern);
                    // The top m + 2 words; zero words below the fraction change nothing.
                    Words number(m + 2, 0);
                    for (std::uint64_t i = 1; i <= std::min(m + 2, length); ++i)
                        number[m + 2 - i] = fraction[length - i];
                    const Words digits = by_basecase(radix, m, fraction);
                    for (std::uint64_t k = 0; k < m; ++k) {
                        Word carry = 0;
                        for (Word& w : number) {
                            const DoubleWord product = static_cast<DoubleWord>(w) * radix + carry;
                            w = low_word(product);
                            carry = high_word(product);
                        }
                        ASSERT_EQ(digits[m - k], carry) << m << " words from " << length;
                    }
                    // Words that were dropped on the way leave the guard word short by one at most.
                    Word guard = 0;
                    for (const Word w : number) guard = high_word(static_cast<DoubleWord>(w) * radix + guard);
                    ASSERT_LE(guard - digits[0], 1u) << m << " words from " << length;
                }
            }
        }
    }
}

TEST(ConvertPlan, HalvesWhileAtLeastSixteenWords) {
    const auto shape = [](std::uint64_t m) {
        const ConvertPlanP plan(base, m, 1);
        return std::pair<int, std::uint64_t>(plan.levels(), plan.leaf());
    };
    EXPECT_EQ(shape(1), std::pair(0, std::uint64_t{1}));
    EXPECT_EQ(shape(15), std::pair(0, std::uint64_t{15}));
    EXPECT_EQ(shape(16), std::pair(1, std::uint64_t{8}));
    EXPECT_EQ(shape(17), std::pair(1, std::uint64_t{9}));
    EXPECT_EQ(shape(30), std::pair(1, std::uint64_t{15}));
    EXPECT_EQ(shape(31), std::pair(2, std::uint64_t{8}));
    EXPECT_EQ(shape(33), std::pair(2, std::uint64_t{9}));
    EXPECT_EQ(shape(1000), std::pair(7, std::uint64_t{8}));
}

TEST(ConvertPlan, RefusesABaseBelowTwo) {
    for (const Word b : {Word{0}, Word{1}}) {
        const ConvertPlanP plan(b, 100, 1);
        EXPECT_EQ(plan.status(), ~std::uint32_t{2});
        Word digits[100];
        const MultiplyContext context(one_task, nullptr, nullptr, 0);
        EXPECT_EQ(convert_L(plan, context, digits + 100, 100, digits, 0, nullptr).status, ~std::uint32_t{2});
    }
    EXPECT_EQ(ConvertPlanP(2, 100, 1).status(), 0u);
}

// The inequality of the guard words, that the operand fits, and that what wraps around stays below what is
// kept and the word that is looked at for its carry.
TEST(ConvertPlan, KeptWordsLieAboveWrappedAndTruncatedOnes) {
    for (const Word b : {base, Word{3}, Word{10}, Word{1} << 40, ~Word{0}}) {
        for (std::uint64_t m = 16; m < 3000; m += 1 + m / 50) {
            const ConvertPlanP plan(b, m, 1);
            for (int j = 0; j < plan.levels(); ++j) {
                const std::uint64_t s = plan.level(j).output_words;
                for (std::uint64_t node = s + 1; node <= std::min(2 * s, m); ++node) {
                    const std::uint64_t kept = plan.fraction_words(j - 1, node - s);
                    ASSERT_GE(plan.fraction_words(j, node), power_whole_words(b, s) + kept + 1)
                        << m << " " << j;
                    const std::uint64_t zeros = plan.level(j).power_zeros;
                    const std::uint64_t power = power_whole_words(b, s) - zeros;
                    ASSERT_LE(plan.fraction_words(j, node) - zeros, plan.level(j).convolution_words());
                    ASSERT_LE(power + kept + 1, plan.level(j).convolution_words()) << m << " " << j;
                    if (j + 1 < plan.levels()) {
                        ASSERT_LE(2 * power, plan.level(j).convolution_words()) << m << " " << j;
                    }
                }
            }
        }
    }
}

TEST(Convert, TheFractionZero) {
    for (const std::uint64_t m : conversion_sizes()) {
        PlannedConversion conversion(base, m, one_task);
        EXPECT_EQ(conversion.convert(Words(m, 0)), Words(m + 1, 0));
        EXPECT_EQ(conversion.convert({}), Words(m + 1, 0));
        EXPECT_EQ(conversion.result.status, 0u);
    }
}

TEST(Convert, ExactlyOneHalf) {
    for (const std::uint64_t m : conversion_sizes()) {
        PlannedConversion conversion(base, m, one_task);
        Words expected(m + 1, 0);
        expected.back() = 5000000000000000000;
        EXPECT_EQ(conversion.convert({Word{1} << 63}), expected);
        Words padded(m + 10, 0);
        padded.back() = Word{1} << 63;
        EXPECT_EQ(conversion.convert(padded), expected);
    }
}

TEST(Convert, EqualsTheBasecase) {
    Random random(1);
    for (const std::uint64_t m : conversion_sizes()) {
        PlannedConversion conversion(base, m, one_task);
        for (const Words& fraction : conversion_fractions(random, conversion.plan.fraction_words())) {
            EXPECT_EQ(top(conversion.convert(fraction)), top(by_basecase(base, m, fraction))) << m;
            EXPECT_EQ(conversion.result.status, 0u);
        }
    }
}

TEST(Convert, OtherBases) {
    Random random(2);
    for (const Word b : {Word{3}, Word{10}, Word{60}, Word{1} << 32, Word{1} << 63, ~Word{0}}) {
        for (const std::uint64_t m : {15u, 16u, 17u, 33u, 100u, 300u}) {
            PlannedConversion conversion(b, m, one_task);
            for (const Words& fraction : conversion_fractions(random, conversion.plan.fraction_words())) {
                EXPECT_EQ(top(conversion.convert(fraction)), top(by_basecase(b, m, fraction)))
                    << b << " " << m;
            }
        }
    }
}

// The digits hash to the integer Floor(f B^m) modulo M, formed by one factor B at a time.
TEST(Convert, DigitsHashLikeTheBinaryProduct) {
    Random random(3);
    for (const std::uint64_t m : {20u, 100u, 400u}) {
        PlannedConversion conversion(base, m, one_task);
        Words number = make_words(random, conversion.plan.fraction_words());
        const Words digits = top(conversion.convert(number));
        const std::uint64_t point = number.size();
        for (std::uint64_t i = 0; i < m; ++i) {
            Word carry = 0;
            for (Word& w : number) {
                const DoubleWord product = static_cast<DoubleWord>(w) * base + carry;
                w = low_word(product);
                carry = high_word(product);
            }
            if (carry) number.push_back(carry);
        }
        EXPECT_EQ(hash_words(0, decimal_word_radix, digits.data(), m),
                  hash_words(0, binary_word_radix, number.data() + point, number.size() - point));
    }
}

TEST(Convert, TheTaskCountChangesNothing) {
    ThreadPerTask threads;
    Random random(4);
    for (const std::uint64_t m : {600u, 1100u, 2500u, 5000u}) {
        const Words fraction = make_words(random, m);
        const Words expected = PlannedConversion(base, m, one_task).convert(fraction);
        for (const std::uint64_t tasks : {2u, 3u, 8u, 13u}) {
            PlannedConversion conversion(base, m, threads.context(tasks));
            threads.forget();
            EXPECT_EQ(conversion.convert(fraction, false), expected) << m << " words, " << tasks << " tasks";
            EXPECT_EQ(threads.tasks_run() > 0, m > 600) << m;
            EXPECT_EQ(conversion.convert(fraction, true), expected) << m << " words, " << tasks << " tasks";
        }
    }
}

TEST(Convert, ShorterOutputsThanThePlan) {
    Random random(5);
    PlannedConversion conversion(base, 300, one_task);
    const Words fraction = make_words(random, 310);
    for (const std::uint64_t m : {1u, 15u, 16u, 100u, 299u}) {
        Words digits(m);
        const ConvertResult result = convert_L(conversion.plan, conversion.context(), digits.data() + m, m,
                                               fraction.data(), fraction.size(), nullptr);
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(digits, top(by_basecase(base, m, fraction)));
    }
}

// The way around a product that wraps gives the same words.
TEST(Convert, TheExactFractionalProductIsTheSame) {
    Random random(6);
    for (const std::uint64_t m : {16u, 33u, 100u, 300u, 1000u}) {
        PlannedConversion conversion(base, m, one_task);
        const ConvertPlanP& plan = conversion.plan;
        for (int j = 0; j < plan.levels(); ++j) {
            const std::uint64_t s = plan.level(j).output_words;
            const std::uint64_t node = std::min(2 * s, m);
            for (const auto pattern : all_patterns) {
                const Words f = make_words(random, plan.fraction_words(j, node), pattern);
                const std::uint64_t wanted = plan.fraction_words(j - 1, node - s);
                Words low(plan.low_fraction_words(j), kelvara_test::garbage);
                Words exact(plan.low_fraction_words(j), kelvara_test::garbage);
                const auto a = fractional_product(plan, j, conversion.context(), low.data(), wanted,
                                                  {f.data(), f.size()});
                const auto b = exact_fractional_product(plan, j, conversion.context(), exact.data(), wanted,
                                                        {f.data(), f.size()});
                ASSERT_EQ(Words(a.words, a.words + a.length), Words(b.words, b.words + b.length))
                    << m << " " << j;
            }
        }
    }
}

// A wrong power of the lowest level, as a memory error would leave it: halves do not fit, and say so.
TEST(Convert, AnOverlapMismatchIsReported) {
    ThreadPerTask threads;
    Random random(8);
    for (const auto& [m, sequential] : {std::pair(std::uint64_t{20}, true), {1500, true}, {1500, false}}) {
        PlannedConversion conversion(base, m, threads.context(2));
        conversion.tables()[3] ^= 1 << 20;
        kelvara_test::RecordingProgress progress;
        conversion.convert(make_words(random, m), sequential, &progress);
        EXPECT_EQ(conversion.result.status, 0x10000002u);
        const auto messages = progress.messages();
        ASSERT_EQ(messages.size(), sequential ? 4u : 3u);
        EXPECT_EQ(messages[0],
                  std::string(sequential ? "convert_L()" : "qmq_CBRv2_ci_btrf_T()") + ": Overlap Mismatch");
        if (sequential) {
            EXPECT_EQ(messages[1], "RL: " + std::to_string(conversion.result.m));
            EXPECT_GE(conversion.result.m, 16u);
            EXPECT_LT(conversion.result.m, 32u);
        }
        EXPECT_EQ(messages[messages.size() - 2], "Expected: " + std::to_string(conversion.result.expected));
        EXPECT_EQ(messages.back(), "Actual: " + std::to_string(conversion.result.actual));
        EXPECT_NE(conversion.result.expected, conversion.result.actual);
        // Nobody to tell is no reason to fail.
        conversion.convert(make_words(random, m), sequential);
        EXPECT_EQ(conversion.result.status, 0x10000002u);
    }
}

// Both ends of the recursion see the labels that were put there.
TEST(Convert, ProgressLabels) {
    struct Recorder : SilentProgress {
        void push_label(std::string_view text, console::Colour colour) override {
            line += text;
            colours.push_back(colour);
            lengths.push_back(text.size());
            seen.push_back(line);
        }
        void pop_label() override {
            line.resize(line.size() - lengths.back());
            lengths.pop_back();
        }
        std::string line;
        std::vector<std::size_t> lengths;
        std::vector<console::Colour> colours;
        std::vector<std::string> seen;
    };
    ThreadPerTask threads;
    Random random(7);
    const Words fraction = make_words(random, 9000);
    for (const bool sequential : {true, false}) {
        PlannedConversion conversion(base, 9000, threads.context(2));
        Recorder recorder;
        conversion.convert(fraction, sequential, &recorder);
        EXPECT_EQ(recorder.line, "");
        ASSERT_GE(recorder.seen.size(), 4u);
        EXPECT_EQ(recorder.seen[0], "-  ");
        EXPECT_EQ(recorder.seen[1], "-  171,005");
        EXPECT_EQ(recorder.seen[2], sequential ? " -> 1 x " : " -> 2 x ");
        EXPECT_EQ(recorder.seen[3], sequential ? " -> 1 x 87,564" : " -> 2 x 87,564");
        EXPECT_EQ(recorder.colours[0], 'G');
        EXPECT_EQ(recorder.colours[1], 'Y');
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(ConvertPlanDeathTest, APlanIsPopulatedOnce) {
    PlannedConversion conversion(base, 100, one_task);
    std::vector<Word> tables(conversion.plan.table_words() + 8);
    EXPECT_FATAL(conversion.plan.populate_fft_plans(conversion.context(), tables.data()),
                 "ConvertPlanP::populate_fft_plans\\(\\): Thread Inconsistancy");
}
#endif

}  // namespace
}  // namespace qmp
