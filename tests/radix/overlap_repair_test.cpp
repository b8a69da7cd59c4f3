// Halves that do not fit, in the whole way from a number to its verified digits.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "radix/convert_plan.h"
#include "radix/digit_codecs.h"
#include "radix/output_fixture.h"
#include "radix/thread_per_task.h"

namespace qmp {
namespace {

using kelvara_test::expect_consistent;
using kelvara_test::Number;
using kelvara_test::Output;
using kelvara_test::Session;
using kelvara_test::ThreadPerTask;

constexpr Word nines = decimal_word_base - 1;

// Digit words that the driver forms for so many digits.
std::uint64_t driver_words(std::uint64_t digits) {
    return digits / 19 + 3;
}

// Looks at the halves of the topmost node, or spoils them in the first attempt.
class TopNode : public DecimalOutputHooks {
  public:
    explicit TopNode(std::uint64_t digits) : m_(driver_words(digits)) {}

    void halves(Word* top, std::uint64_t s, std::uint64_t low_m, ConvertResult& high,
                ConvertResult& low) final {
        if (s + low_m != m_) return;
        if (attempts == 0) spoil(top, s, low_m, high, low);
        guard = high.guard;
        low_top = *(top - s - 1);
        high_top = top[-1];
    }
    void converted(std::uint64_t, ConvertResult& result, Word*, std::uint64_t) final {
        statuses.push_back(result.status);
        ++attempts;
    }

    Word guard = 0;
    Word low_top = 0;
    Word high_top = 0;
    int attempts = 0;
    std::vector<std::uint32_t> statuses;

  protected:
    virtual void spoil(Word*, std::uint64_t, std::uint64_t, ConvertResult&, ConvertResult&) {}

  private:
    std::uint64_t m_;
};

Output decimal(const Number& x, std::uint64_t digits, ParallelContext parallel, TopNode& hooks) {
    Session session = Session::decimal(parallel, digits);
    return session.write_decimal(x.view(), digits, hooks);
}

class OverlapRepair : public testing::TestWithParam<std::uint64_t> {
  protected:
    // The second has halves that are worth threads.
    static constexpr std::uint64_t sizes[] = {1000, 30000};
    ParallelContext parallel() { return threads_.context(GetParam()); }

  private:
    ThreadPerTask threads_;
};

// 1/10, rounded up in the last word that the conversion takes. The high half is given fewer words, which lie
// below 1/10, and so its digits are 0999...9 with nines to follow; the low half sees the whole and begins
// with zeros. The carry has to go through the high half to its first word.
TEST_P(OverlapRepair, ACarryThroughTheWholeHighHalf) {
    for (const std::uint64_t digits : sizes) {
        const std::uint64_t n = ConvertPlanP(decimal_word_base, driver_words(digits), 1).fraction_words();
        std::vector<Word> tenth(n, 0x9999999999999999);
        tenth.back() = 0x1999999999999999;
        tenth.front() = 0x999999999999999a;
        TopNode top(digits);
        const Output output = decimal(Number(tenth), digits, parallel(), top);
        EXPECT_EQ(top.guard, nines);
        EXPECT_EQ(top.low_top, 0u);
        EXPECT_EQ(top.high_top, decimal_word_base / 10 - 1);
        EXPECT_EQ(output.text, "0.1" + std::string(digits - 1, '0'));
        EXPECT_EQ(top.statuses, std::vector<std::uint32_t>{0});
        EXPECT_TRUE(output.messages.empty());
        expect_consistent(output, digits, 10);
    }
}

// The other way round, which no truncation leads to: the high half has reached 1/2, and the low half is given
// as if it lay a little below.
TEST_P(OverlapRepair, ALowHalfJustBelowTheBoundary) {
    struct JustBelow : TopNode {
        using TopNode::TopNode;
        void spoil(Word* top, std::uint64_t s, std::uint64_t low_m, ConvertResult& high,
                   ConvertResult& low) override {
            EXPECT_EQ(high.guard, 0u);
            for (std::uint64_t i = 1; i <= low_m; ++i) {
                Word& w = *(top - s - i);
                EXPECT_EQ(w, 0u);
                w = nines;
            }
            low.guard = nines;
        }
    };
    for (const std::uint64_t digits : sizes) {
        JustBelow top(digits);
        const Output output = decimal(Number({Word{1} << 63}), digits, parallel(), top);
        EXPECT_EQ(top.guard, 0u);
        EXPECT_EQ(top.low_top, nines);
        EXPECT_EQ(output.text, "0.5" + std::string(digits - 1, '0'));
        EXPECT_EQ(top.statuses, std::vector<std::uint32_t>{0});
        EXPECT_TRUE(output.messages.empty());
        expect_consistent(output, digits, 10);
    }
}

// A guard word that is off by two is no carry. The conversion says so and is done again.
TEST_P(OverlapRepair, AMismatchIsToldAndConvertedAgain) {
    struct OffByTwo : TopNode {
        using TopNode::TopNode;
        void spoil(Word*, std::uint64_t, std::uint64_t, ConvertResult& high, ConvertResult&) override {
            expected = high.guard;
            high.guard += 2;
        }
        Word expected = 0;
    };
    for (const std::uint64_t digits : sizes) {
        const std::vector<Word> third(driver_words(digits) + 80, 0x5555555555555555);
        OffByTwo top(digits);
        const Output output = decimal(Number(third), digits, parallel(), top);
        EXPECT_EQ(top.statuses, (std::vector<std::uint32_t>{0x10000002, 0}));
        EXPECT_EQ(top.expected, 3333333333333333333u);
        std::vector<std::string> messages;
        if (GetParam() == 1) {
            messages = {"convert_L(): Overlap Mismatch", "RL: " + std::to_string(driver_words(digits))};
        } else {
            messages = {"qmq_CBRv2_ci_btrf_T(): Overlap Mismatch"};
        }
        messages.insert(messages.end(), {"Expected: 3333333333333333333", "Actual: 3333333333333333335",
                                         "Radix Conversion Failed - Reattempting..."});
        EXPECT_EQ(output.messages, messages);
        EXPECT_EQ(output.text, "0." + std::string(digits, '3'));
        expect_consistent(output, digits, 10);
    }
}

INSTANTIATE_TEST_SUITE_P(Tasks, OverlapRepair, testing::Values(1, 2, 3, 16),
                         [](const auto& tasks) { return std::to_string(tasks.param); });

}  // namespace
}  // namespace qmp
