#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "radix/digit_codecs.h"
#include "radix/digit_stream.h"
#include "radix/output_fixture.h"
#include "radix/thread_per_task.h"
#include "support/fatal.h"

namespace qmp {
namespace {

using kelvara_test::expect_consistent;
using kelvara_test::make_words;
using kelvara_test::Number;
using kelvara_test::Output;
using kelvara_test::Random;
using kelvara_test::Session;
using kelvara_test::ThreadPerTask;

const ParallelContext one_task = ParallelContext::sequential();

Output hexadecimal(BigFloatView x, std::uint64_t digits, ParallelContext parallel = one_task) {
    Session session = Session::hexadecimal(parallel, digits);
    return session.write_hexadecimal(x, digits);
}

std::string words_text(const std::vector<Word>& words) {
    std::string text(16 * words.size(), '\0');
    u64_to_h16_text(text.data(), words.data(), words.size());
    return text;
}

TEST(HexadecimalOutput, EveryDigitCount) {
    Random random(1);
    const auto words = make_words(random, 5);
    const Number x(words, 0xabc);
    const std::string text = words_text(words) + std::string(40, '0');
    for (std::uint64_t digits = 0; digits <= 100; ++digits) {
        const Output output = hexadecimal(x.view(), digits);
        EXPECT_EQ(output.text, "abc." + text.substr(0, digits));
        expect_consistent(output, digits, 16);
    }
}

TEST(HexadecimalOutput, SmallNumbersIntegersAndZero) {
    const Word words[] = {0x123456789abcdef0, 0x1};
    EXPECT_EQ(hexadecimal({words, 2, -5, 1}, 96).text,
              "0." + std::string(63, '0') + "1123456789abcdef0" + std::string(16, '0'));
    EXPECT_EQ(hexadecimal(Number({}, ~Word{0}).view(), 20).text, "ffffffffffffffff." + std::string(20, '0'));
    EXPECT_EQ(hexadecimal(Number({}).view(), 3).text, "0.000");
    EXPECT_EQ(hexadecimal(Number({}, 16).view(), 0).text, "10.");
}

// More than one block, over several tasks, and a number that ends in the middle.
TEST(HexadecimalOutput, SeveralBlocks) {
    ThreadPerTask threads;
    Random random(2);
    const auto words = make_words(random, 140000);
    const Number x(words, 3);
    const std::string text = words_text(words) + std::string(100000, '0');
    for (const std::uint64_t digits :
         {std::uint64_t{1048576}, std::uint64_t{1048577}, std::uint64_t{2300000}}) {
        for (const std::uint64_t tasks : {1u, 3u, 100u}) {
            const Output output = hexadecimal(x.view(), digits, threads.context(tasks));
            EXPECT_EQ(output.text, "3." + text.substr(0, digits));
            expect_consistent(output, digits, 16);
        }
    }
}

TEST(HexadecimalOutput, TheStepAndItsTexts) {
    const Number x(std::vector<Word>(70000, 0x1111111111111111), 1);
    const Output output = hexadecimal(x.view(), 1100000);
    const std::vector<std::string> expected = {"step Writing Hexadecimal Digits:|Writing hexadecimal Digits",
                                               "opened 1.",
                                               "label 1,048,576  digits written",
                                               "label 1,100,000  digits written",
                                               "finished",
                                               "destroyed",
                                               "done"};
    EXPECT_EQ(output.lines, expected);
    EXPECT_EQ(output.digits.counts[1], 1100000u);
}

#if GTEST_HAS_DEATH_TEST
TEST(HexadecimalOutputDeathTest, NumbersOutOfRange) {
    const Word words[] = {1, 1};
    EXPECT_FATAL(hexadecimal({words, 2, 0, 1}, 10), "Number is out of range\\.");
}
#endif

}  // namespace
}  // namespace qmp
