#include "series/bsr_verify.h"

#include <gtest/gtest.h>

#include "constants/pi_formulas.h"
#include "errors/bsr_modular_check.h"
#include "platform/parallel/registry.h"
#include "series/series_e_taylor.h"
#include "series/test_series.h"
#include "support/console.h"

namespace qmp {
namespace {

using kelvara::BSRModularCheckFailedException;

class Messages final : public SilentProgress {
  public:
    void message(std::string_view text, console::Colour colour) override {
        texts.emplace_back(text);
        EXPECT_EQ(colour, 'R');
    }
    std::vector<std::string> texts;
};

template <typename Series>
class SummedBlock {
  public:
    SummedBlock(const Series& series, std::uint64_t a, std::uint64_t b)
        : planned_(BSR_sizes(series, psr_size(series, a, b), 0, 1)) {
        const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                      planned_.scratch.data(), planned_.scratch.words());
        SilentProgress progress;
        BSR_block(series, context, &progress, planned_.buffers, a, b, 0);
    }
    std::span<ExactFloat> outputs() { return {planned_.buffers.data(), Series::output_count}; }

  private:
    kelvara_test::PlannedBuffers<Series> planned_;
};

struct Bit {
    std::uint64_t word;
    unsigned bit;

    void flip_in(const ExactFloat& x) const { x.T[word] ^= Word{1} << bit; }
    // The stored check value less that of the words, once it is flipped.
    std::uint64_t difference(const ExactFloat& x) const {
        const std::uint64_t weight = check_mul(check_reduce(Word{1} << bit),
                                               check_word_weight(x.exp + static_cast<std::int64_t>(word)));
        const bool set = x.T[word] >> bit & 1;
        return set ? weight : check_sub(0, weight);
    }
};

// Every output in turn, at its lowest, a middle and its top word: the block's range, and the flipped
// output's difference alone.
template <typename Series>
void expect_flipped_bits_found(SummedBlock<Series>& block, std::uint64_t a, std::uint64_t b,
                               ParallelContext parallel) {
    const std::span<ExactFloat> outputs = block.outputs();
    Messages messages;
    EXPECT_NO_THROW(qcb_Verify_BSR(&messages, a, b, outputs, parallel));
    EXPECT_TRUE(messages.texts.empty());
    const std::string text =
        "Modular Redundancy Check Failed: " + std::to_string(a) + " : " + std::to_string(b);
    for (std::size_t i = 0; i < Series::output_count; i++) {
        const ExactFloat& x = outputs[i];
        for (const std::uint64_t word : {std::uint64_t{0}, x.L / 2, x.L - 1}) {
            for (const unsigned bit : {0u, 5u, 60u, 61u, 63u}) {
                SCOPED_TRACE(testing::Message() << "output " << i << ", word " << word << ", bit " << bit);
                const Bit flipped = {word, bit};
                std::vector<std::uint64_t> expected(Series::output_count, 0);
                expected[i] = flipped.difference(x);
                flipped.flip_in(x);
                messages.texts.clear();
                try {
                    qcb_Verify_BSR(&messages, a, b, outputs, parallel);
                    ADD_FAILURE() << "not found";
                } catch (const BSRModularCheckFailedException& e) {
                    EXPECT_EQ(e.function(), "qcb_Verify_BSR()");
                    EXPECT_EQ(e.message(), "Modular Redundancy Check Failed");
                    EXPECT_EQ(e.a(), a);
                    EXPECT_EQ(e.b(), b);
                    EXPECT_EQ(e.hash(), expected);
                }
                flipped.flip_in(x);
                EXPECT_EQ(messages.texts, std::vector{text});
            }
        }
    }
}

// Outputs short enough to be checked one after the other, by one task and by several.
TEST(Verify, FindsAFlippedBitOfAnyOutput) {
    const auto framework = make_default_parallelizer();
    const auto expect_found = [&](const auto& series, std::uint64_t a, std::uint64_t b) {
        SummedBlock block(series, a, b);
        ASSERT_LT(block.outputs()[0].L, parallel_verify_threshold);
        expect_flipped_bits_found(block, a, b, ParallelContext::sequential());
        expect_flipped_bits_found(block, a, b, {4, framework.get()});
    };
    expect_found(kelvara::pi_formula(0).series, 0, 300);
    expect_found(kelvara::pi_formula(1).series, 17, 18);
    expect_found(kelvara::pi_formula(1).series, 1000, 2000);
    expect_found(Series_e_Taylor(false), 1, 3000);
    expect_found(Series_e_Taylor(true), 1, 3000);
    expect_found(kelvara_test::LogSeries(true), 0, 300);
}

TEST(Verify, FindsAFlippedBitOfLongOutputs) {
    const auto framework = make_default_parallelizer();
    const auto expect_found = [&](const auto& series, std::uint64_t a, std::uint64_t b) {
        SummedBlock block(series, a, b);
        ASSERT_GE(block.outputs()[0].L, parallel_verify_threshold);
        for (const std::uint64_t tasks : {1u, 2u, 4u}) {
            expect_flipped_bits_found(block, a, b, {tasks, framework.get()});
        }
    };
    expect_found(kelvara::pi_formula(0).series, 0, 8000);
    expect_found(kelvara::pi_formula(1).series, 500, 10500);
    expect_found(Series_e_Taylor(false), 1, 55000);
    expect_found(Series_e_Taylor(true), 1, 55000);
}

// The series over powers of two has a P whose lowest word stands below the point.
TEST(Verify, TakesNegativeExponents) {
    const auto framework = make_default_parallelizer();
    for (const std::uint64_t b : {std::uint64_t{200}, std::uint64_t{60000}}) {
        SummedBlock block(kelvara_test::LogSeries(false), 0, b);
        EXPECT_LT(block.outputs()[0].exp, 0);
        EXPECT_EQ(block.outputs()[0].L >= parallel_verify_threshold, b == 60000);
        for (const ExactFloat& x : block.outputs()) {
            EXPECT_EQ(recheck(ParallelContext::sequential(), x), 0u);
            EXPECT_EQ(recheck({3, framework.get()}, x), 0u);
        }
        expect_flipped_bits_found(block, 0, b, {2, framework.get()});
    }
}

TEST(Verify, NeedsNoProgress) {
    SummedBlock block(kelvara_test::LogSeries(false), 0, 10);
    block.outputs()[0].hash ^= 1;
    EXPECT_THROW(qcb_Verify_BSR(nullptr, 0, 10, block.outputs(), ParallelContext::sequential()),
                 BSRModularCheckFailedException);
}

TEST(Verify, PrintsWhatDiffers) {
    SummedBlock block(kelvara::pi_formula(0).series, 3, 100);
    for (std::size_t i = 0; i < 3; i++) {
        const ExactFloat& x = block.outputs()[i];
        const Bit flipped = {x.L - 1, 2};
        std::string expected =
            "\n"
            "Exception Encountered: BSRModularCheckFailedException\n"
            "\n"
            "In Function: qcb_Verify_BSR()\n"
            "\n"
            "Modular Redundancy Check Failed\n"
            "    a =             3\n"
            "    b =             100\n";
        for (std::size_t j = 0; j < 3; j++) {
            expected += "    hash[" + std::to_string(j) +
                        "] =       " + std::to_string(i == j ? flipped.difference(x) : 0) + "\n";
        }
        expected += "\n";
        flipped.flip_in(x);
        EXPECT_EQ(kelvara_test::printed_by([&] {
                      try {
                          qcb_Verify_BSR(nullptr, 3, 100, block.outputs(), ParallelContext::sequential());
                      } catch (const Exception& e) {
                          e.print();
                      }
                  }),
                  expected);
        flipped.flip_in(x);
    }
}

TEST(Recheck, WeighsTheExponent) {
    Word words[2] = {0x123456789abcdef0, 0xfedcba9876543210};
    for (const std::int64_t exp : {0, 1, 20, -1, -20}) {
        ExactFloatView x = {words, 2, exp, 0};
        x.hash = check_mul(check_add(check_reduce(words[0]), check_mul(8, check_reduce(words[1]))),
                           check_word_weight(exp));
        EXPECT_EQ(recheck(ParallelContext::sequential(), x), 0u);
        x.hash = check_sub(x.hash, 5);
        EXPECT_EQ(recheck(ParallelContext::sequential(), x), check_modulus - 5);
    }
}

class CountingFramework final : public BasicParallelizer {
  public:
    void run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) override {
        ranges++;
        for (std::uint64_t i = start; i < end; i++) action.run(i);
    }
    void run_in_parallel(BasicAction& a, BasicAction& b) override {
        a.run(0);
        b.run(0);
    }
    const char* get_type_name() const override { return "counting"; }
    const char* get_display_name() const override { return "Counting"; }
    std::uint64_t ranges = 0;
};

TEST(Verify, RunsInParallelFromTenThousandWords) {
    kelvara_test::Random random;
    for (const std::uint64_t words : {9999u, 10000u}) {
        auto large = kelvara_test::make_words(random, words);
        auto little = kelvara_test::make_words(random, 20);
        ExactFloat outputs[2] = {ExactFloat(large.data(), words), ExactFloat(little.data(), 20)};
        outputs[0].L = words;
        outputs[1].L = 20;
        for (ExactFloat& x : outputs) x.hash = hash_words(0, binary_word_radix, x.T, x.L);
        CountingFramework framework;
        qcb_Verify_BSR(nullptr, 0, 1, outputs, {4, &framework});
        EXPECT_EQ(framework.ranges > 0, words == 10000);
    }
}

}  // namespace
}  // namespace qmp
