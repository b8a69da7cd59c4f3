#include "series/bsr_verify.h"

#include <gtest/gtest.h>

#include "constants/pi_formulas.h"
#include "errors/bsr_modular_check.h"
#include "series/test_series.h"
#include "support/standard_streams.h"

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
    SummedBlock(const Series& series, std::uint64_t b)
        : planned_(BSR_sizes(series, psr_size(series, 0, b), 0, 1)) {
        const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                      planned_.scratch.data(), planned_.scratch.words());
        SilentProgress progress;
        BSR_block(series, context, &progress, planned_.buffers, 0, b, 0);
    }
    std::span<ExactFloat> outputs() { return {planned_.buffers.data(), Series::output_count}; }

  private:
    kelvara_test::PlannedBuffers<Series> planned_;
};

// Every output in turn, at its lowest, highest and a middle word.
template <typename Series>
void expect_flipped_bits_found(const Series& series, std::uint64_t b) {
    SummedBlock<Series> block(series, b);
    Messages messages;
    EXPECT_NO_THROW(qcb_Verify_BSR(&messages, 0, b, block.outputs(), ParallelContext::sequential()));
    EXPECT_TRUE(messages.texts.empty());
    for (std::size_t i = 0; i < Series::output_count; i++) {
        ExactFloat& x = block.outputs()[i];
        for (const std::uint64_t word : {std::uint64_t{0}, x.L / 2, x.L - 1}) {
            for (const int bit : {0, 5, 60, 63}) {
                x.T[word] ^= Word{1} << bit;
                try {
                    qcb_Verify_BSR(&messages, 0, b, block.outputs(), ParallelContext::sequential());
                    ADD_FAILURE() << i << ": " << word << ": " << bit;
                } catch (const BSRModularCheckFailedException& e) {
                    EXPECT_EQ(e.function(), "qcb_Verify_BSR()");
                    EXPECT_EQ(e.message(), "Modular Redundancy Check Failed");
                    EXPECT_EQ(e.a(), 0u);
                    EXPECT_EQ(e.b(), b);
                    ASSERT_EQ(e.hash().size(), Series::output_count);
                    for (std::size_t j = 0; j < Series::output_count; j++) {
                        EXPECT_EQ(e.hash()[j] != 0, i == j);
                        EXPECT_LT(e.hash()[j], check_modulus);
                    }
                }
                x.T[word] ^= Word{1} << bit;
                EXPECT_EQ(messages.texts.back(), "Modular Redundancy Check Failed: 0 : " + std::to_string(b));
            }
        }
    }
}

TEST(Verify, FindsAFlippedBitOfAnyOutput) {
    expect_flipped_bits_found(kelvara::pi_formula(0).series, 300);
    // P's exponent is negative.
    expect_flipped_bits_found(kelvara_test::LogSeries(true), 300);
}

TEST(Verify, NeedsNoProgress) {
    SummedBlock block(kelvara_test::LogSeries(false), 10);
    block.outputs()[0].hash ^= 1;
    EXPECT_THROW(qcb_Verify_BSR(nullptr, 0, 10, block.outputs(), ParallelContext::sequential()),
                 BSRModularCheckFailedException);
}

TEST(Verify, PrintsWhatDiffers) {
    SummedBlock block(kelvara::pi_formula(0).series, 100);
    ExactFloat& Q = block.outputs()[1];
    Q.hash = check_add(Q.hash, 77);
    kelvara_test::CapturedOutput captured;
    try {
        qcb_Verify_BSR(nullptr, 0, 100, block.outputs(), ParallelContext::sequential());
        FAIL();
    } catch (const Exception& e) {
        e.print();
    }
    const std::string output = captured.finish();
    std::size_t at = 0;
    for (const char* text :
         {"Exception Encountered", "BSRModularCheckFailedException", "In Function", "qcb_Verify_BSR()",
          "Modular Redundancy Check Failed", "    a = ", "0", "    b = ", "100", "    hash[0] = ", "0",
          "    hash[1] = ", "77", "    hash[2] = ", "0"}) {
        at = output.find(text, at);
        ASSERT_NE(at, std::string::npos) << text << " in:\n" << output;
        at += std::string_view(text).size();
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
