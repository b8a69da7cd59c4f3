#include "radix/decimal_output.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errors/exception.h"
#include "errors/recovered_errors.h"
#include "numbers/check_value.h"
#include "radix/digit_codecs.h"
#include "radix/hash.h"
#include "radix/output_fixture.h"
#include "radix/thread_per_task.h"
#include "support/fatal.h"

namespace qmp {
namespace {

using kelvara_test::expect_consistent;
using kelvara_test::Number;
using kelvara_test::Output;
using kelvara_test::Session;
using kelvara_test::ThreadPerTask;

const ParallelContext one_task = ParallelContext::sequential();
constexpr Word half = Word{1} << 63;

// p/q in n binary words, and its decimal digits, by long division.
Number quotient(Word p, Word q, std::uint64_t n) {
    std::vector<Word> words(n);
    Word rest = p % q;
    for (std::uint64_t i = n; i-- > 0;) {
        const DoubleWord dividend = static_cast<DoubleWord>(rest) << 64;
        words[i] = static_cast<Word>(dividend / q);
        rest = static_cast<Word>(dividend % q);
    }
    return Number(words, p / q);
}
std::string quotient_text(Word p, Word q, std::uint64_t digits) {
    std::string text = std::to_string(p / q) + ".";
    Word rest = p % q;
    for (std::uint64_t i = 0; i < digits; ++i) {
        rest *= 10;
        text += static_cast<char>('0' + rest / q);
        rest %= q;
    }
    return text;
}

Output decimal(BigFloatView x, std::uint64_t digits, ParallelContext parallel = one_task) {
    Session session = Session::decimal(parallel, digits);
    return session.write_decimal(x, digits);
}

TEST(DecimalOutput, RepeatingFractions) {
    for (const std::uint64_t digits : {1u, 18u, 19u, 20u, 37u, 38u, 39u, 57u, 100u, 101u, 1000u, 12345u}) {
        for (const auto& [p, q] : {std::pair<Word, Word>{1, 7}, {22, 7}, {1000003, 999983}, {2, 3}}) {
            const Number x = quotient(p, q, digits / 19 + 20);
            const std::uint64_t recovered = recovered_errors();
            const Output output = decimal(x.view(), digits);
            EXPECT_EQ(recovered_errors(), recovered);
            EXPECT_EQ(output.text, quotient_text(p, q, digits));
            expect_consistent(output, digits, 10);
            EXPECT_TRUE(output.messages.empty());
        }
    }
}

TEST(DecimalOutput, OneHalf) {
    const Number x({half});
    EXPECT_EQ(decimal(x.view(), 1).digits.hash, 5u);
    EXPECT_EQ(decimal(x.view(), 20).digits.hash,
              static_cast<DoubleWord>(5) * decimal_word_base % check_modulus);
    EXPECT_EQ(decimal(x.view(), 20).text, "0.50000000000000000000");
    EXPECT_EQ(decimal(x.view(), 5000).text, "0.5" + std::string(4999, '0'));
}

TEST(DecimalOutput, NoDigitsAtAll) {
    const Output output = decimal(quotient(22, 7, 30).view(), 0);
    EXPECT_EQ(output.text, "3.");
    EXPECT_EQ(output.digits.hash, 3u);
    EXPECT_EQ(output.digits.last_digits, "");
    expect_consistent(output, 0, 10);
}

TEST(DecimalOutput, IntegersAndZero) {
    EXPECT_EQ(decimal(Number({}, 7).view(), 100).text, "7." + std::string(100, '0'));
    EXPECT_EQ(decimal(Number({}, ~Word{0}).view(), 20).text, "18446744073709551615." + std::string(20, '0'));
    EXPECT_EQ(decimal(Number({}, ~Word{0}).view(), 0).digits.hash, ~Word{0} % check_modulus);
    EXPECT_EQ(decimal(Number({}).view(), 40).text, "0." + std::string(40, '0'));
    EXPECT_EQ(decimal(Number({}).view(), 40).digits.hash, 0u);
}

TEST(DecimalOutput, NinesThatARoundedResultWouldHide) {
    // 1 - 2^(-64 n): nines, far beyond the wanted digits.
    const Number x(std::vector<Word>(60, ~Word{0}));
    for (const std::uint64_t digits : {1u, 19u, 100u, 1000u}) {
        EXPECT_EQ(decimal(x.view(), digits).text, "0." + std::string(digits, '9'));
    }
    // 0.1 cut to n words lies below 0.1.
    EXPECT_EQ(decimal(quotient(1, 10, 60).view(), 1000).text, "0.0" + std::string(999, '9'));
}

// Fractions that begin with zero words have no words for them.
TEST(DecimalOutput, SmallNumbers) {
    constexpr std::uint64_t digits = 960;
    const Word words[] = {0x123456789abcdef, 1};
    for (const std::uint64_t length : {2u, 3u, 4u, 10u, 51u, 52u, 53u, 60u, 1000u}) {
        const Output output = decimal({words, 2, -static_cast<std::int64_t>(length), 1}, digits);
        // One factor 10 after the other.
        std::vector<Word> number(length, 0);
        number[0] = words[0];
        number[1] = words[1];
        std::string expected = "0.";
        for (std::uint64_t i = 0; i < digits; ++i) {
            Word carry = 0;
            for (Word& w : number) {
                const DoubleWord product = static_cast<DoubleWord>(w) * 10 + carry;
                w = low_word(product);
                carry = high_word(product);
            }
            expected += static_cast<char>('0' + carry);
        }
        EXPECT_EQ(output.text, expected) << length;
        expect_consistent(output, digits, 10);
    }
}

TEST(DecimalOutput, TheTaskCountChangesNothing) {
    ThreadPerTask threads;
    const Number x = quotient(1000003, 999983, 5500);
    const Output expected = decimal(x.view(), 100000);
    EXPECT_EQ(expected.text, quotient_text(1000003, 999983, 100000));
    for (const std::uint64_t tasks : {2u, 3u, 8u}) {
        const Output output = decimal(x.view(), 100000, threads.context(tasks));
        EXPECT_EQ(output.text, expected.text);
        EXPECT_EQ(output.digits.hash, expected.digits.hash);
        EXPECT_EQ(output.digits.counts, expected.digits.counts);
    }
}

TEST(DecimalOutput, TheStepsAndTheirTexts) {
    const Output output = decimal(quotient(22, 7, 40).view(), 300);
    const std::vector<std::string> expected = {"step Base Converting:|Base Converting",
                                               "label Squaring...    ",
                                               "label Converting...  ",
                                               "done",
                                               "step Writing Decimal Digits:   |Writing Decimal Digits",
                                               "opened 3.",
                                               "label 300  digits written",
                                               "done",
                                               "step Verifying Base Conversion...|Verifying Base Conversion",
                                               "label Hashing Decimal...  ",
                                               "label Powering...",
                                               "label Multiplying...",
                                               "label Hashing Binary...",
                                               "finished",
                                               "done",
                                               "destroyed"};
    EXPECT_EQ(output.lines, expected);
}

// One more byte than announced is never taken, at any size and task count; one block less is too little.
TEST(DecimalOutput, MemoryIsWhatWasAnnounced) {
    ThreadPerTask threads;
    for (const std::uint64_t digits : {0u, 1u, 200u, 240u, 1000u, 5000u, 20000u, 60000u}) {
        for (const std::uint64_t tasks : {1u, 2u, 5u, 16u}) {
            const Output output =
                decimal(quotient(1, 3, digits / 19 + 20).view(), digits, threads.context(tasks));
            EXPECT_EQ(output.text, "0." + std::string(digits, '3'));
        }
    }
}

TEST(DecimalOutput, TheEstimatesGrowWithTheDigits) {
    std::uint64_t bytes = 0;
    std::uint64_t product = 0;
    for (std::uint64_t digits = 0; digits < 100000; digits += 1 + digits / 10) {
        EXPECT_GE(decimal_output_largest_product(digits), product);
        product = decimal_output_largest_product(digits);
        EXPECT_GE(decimal_output_bytes(digits, 3), decimal_output_bytes(digits, 1));
        bytes = std::max(bytes, decimal_output_bytes(digits, 1));
    }
    EXPECT_GT(bytes, 100000u);
}

// A conversion that fails once is done again, with new powers.
TEST(DecimalOutput, AFailedConversionIsRepeated) {
    struct FailTwice : DecimalOutputHooks {
        void converted(std::uint64_t attempt, ConvertResult& result, Word* digits, std::uint64_t m) override {
            if (attempt < 2) {
                result.status = overlap_mismatch;
                for (std::uint64_t i = 0; i < m; ++i) digits[i] = kelvara_test::garbage;
            }
            attempts = attempt + 1;
        }
        std::uint64_t attempts = 0;
    } hooks;
    const std::uint64_t recovered = recovered_errors();
    Session session = Session::decimal(one_task, 1000);
    const Output output = session.write_decimal(quotient(22, 7, 70).view(), 1000, hooks);
    EXPECT_EQ(hooks.attempts, 3u);
    EXPECT_EQ(recovered_errors(), recovered + 2);
    EXPECT_EQ(output.text, quotient_text(22, 7, 1000));
    EXPECT_EQ(output.messages, std::vector<std::string>(2, "Radix Conversion Failed - Reattempting..."));
}

TEST(DecimalOutput, AFailedVerificationIsRepeated) {
    struct FailOnce : DecimalOutputHooks {
        void hashed_binary(std::uint64_t attempt, std::uint64_t& hash) override {
            if (attempt == 0) hash ^= 1;
        }
    } hooks;
    const std::uint64_t recovered = recovered_errors();
    Session session = Session::decimal(one_task, 1000);
    const Output output = session.write_decimal(quotient(22, 7, 70).view(), 1000, hooks);
    EXPECT_EQ(recovered_errors(), recovered + 1);
    expect_consistent(output, 1000, 10);
    EXPECT_EQ(output.messages, std::vector<std::string>{"Verification Failed - Reattempting..."});
}

TEST(DecimalOutput, AWrongPowerIsSeenAndFormedAgain) {
    struct WrongPower : DecimalOutputHooks {
        void powered(std::uint64_t attempt, RadixPower& power) override {
            if (attempt == 0) ++power.words[power.length / 2];
        }
    } hooks;
    const std::uint64_t recovered = recovered_errors();
    Session session = Session::decimal(one_task, 1000);
    const Output output = session.write_decimal(quotient(22, 7, 70).view(), 1000, hooks);
    EXPECT_EQ(recovered_errors(), recovered + 1);
    expect_consistent(output, 1000, 10);
    ASSERT_EQ(output.messages.size(), 4u);
    EXPECT_EQ(output.messages[0], "Radix Conversion: Power Hash Mismatch");
    EXPECT_EQ(output.messages[1].substr(0, 10), "Expected: ");
    EXPECT_EQ(output.messages[2].substr(0, 10), "Actual  : ");
    EXPECT_NE(output.messages[1].substr(10), output.messages[2].substr(10));
    EXPECT_EQ(output.messages[3], "Verification Failed - Reattempting...");
}

// The digit word of weight (10^19)^20 is one too large.
struct WrongDigit : DecimalOutputHooks {
    void converted(std::uint64_t, ConvertResult&, Word* digits, std::uint64_t) override { ++digits[20]; }
};

TEST(DecimalOutput, BothValuesOfAPersistentDisagreement) {
    // Leaves before the end that the driver has in store.
    struct LeaveAtTheEnd : SilentProgress {
        void message(std::string_view text, console::Colour) override {
            messages.emplace_back(text);
            if (text.substr(0, 4) == "B = ") throw AlgorithmFailedException("test", "end");
        }
        std::vector<std::string> messages;
    } progress;
    WrongDigit hooks;
    const kelvara_test::Twiddles twiddles(decimal_output_largest_product(1000));
    std::string text;
    const ComputeContext context{one_task, twiddles.get(), nullptr, &progress};
    EXPECT_THROW(
        write_decimal(context, quotient(22, 7, 70).view(), 1000, kelvara_test::recording_sink(text), hooks),
        AlgorithmFailedException);
    ASSERT_EQ(progress.messages.size(), 3u);
    EXPECT_EQ(progress.messages[0], "Verification Failed - Reattempting...");
    ASSERT_EQ(progress.messages[1].substr(0, 4), "R = ");
    const std::uint64_t r = std::stoull(progress.messages[1].substr(4));
    const std::uint64_t b = std::stoull(progress.messages[2].substr(4));
    EXPECT_EQ(r, check_add(b, pow_mod(decimal_word_radix, 20)));
}

#if GTEST_HAS_DEATH_TEST
// Wrong digits that were written are never passed off as right.
TEST(DecimalOutputDeathTest, WrongDigitsAreFatal) {
    const Number x = quotient(22, 7, 70);
    EXPECT_FATAL(
        {
            WrongDigit hooks;
            Session session = Session::decimal(one_task, 1000);
            session.write_decimal(x.view(), 1000, hooks);
        },
        "Base Conversion Failed: Checksum Mismatch");
}

TEST(DecimalOutputDeathTest, APowerThatStaysWrongIsFatal) {
    struct WrongPower : DecimalOutputHooks {
        void powered(std::uint64_t, RadixPower& power) override { power.words[0] ^= 4; }
    };
    const Number x = quotient(22, 7, 70);
    EXPECT_FATAL(
        {
            WrongPower hooks;
            Session session = Session::decimal(one_task, 1000);
            session.write_decimal(x.view(), 1000, hooks);
        },
        "Base Conversion Failed: Checksum Mismatch");
}

TEST(DecimalOutputDeathTest, NumbersOutOfRange) {
    const Word words[] = {1, 1};
    const auto write = [&](BigFloatView x) { decimal(x, 100); };
    EXPECT_FATAL(write({words, 1, 1, 1}), "Number is out of range\\.");
    EXPECT_FATAL(write({words, 2, 0, 1}), "Number is out of range\\.");
    EXPECT_FATAL(write({words, 1, 0, 0}), "Number is out of range\\.");
}
#endif

}  // namespace
}  // namespace qmp
