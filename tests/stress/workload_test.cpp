// The operand, what its square must hash to, and the one thread's work.
#include "stress/workload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "multiply/twiddle_set.h"
#include "numbers/check_value.h"
#include "platform/memory/checked_array.h"
#include "stress/catalogue.h"
#include "stress/stress_machine_fake.h"
#include "support/levels.h"

namespace kelvara {
namespace {

using kelvara_test::FaultyTest;
using qmp::Word;

TEST(FillOperand, StartsWithTheseWords) {
    std::vector<Word> words(6, 0);
    fill_operand(words.data(), 5);
    // c^3 * 0x282c82b9175 + 0x282c857661b for c = 0x282c8833b79 and the next one.
    EXPECT_EQ(words[0], 0x916f3fa9fb3a2ed8u);
    EXPECT_EQ(words[1], 0xc7e4ce167aa50d63u);
    EXPECT_EQ(words[5], 0u);
    fill_operand(words.data(), 6);
    EXPECT_EQ(words[5], 0x9ec6bac7d3f7ac73u);
}

TEST(HashOfSquare, IsReducedAtTheEdges) {
    constexpr std::uint64_t p = qmp::check_modulus;
    EXPECT_EQ(hash_of_square(0), 0u);
    EXPECT_EQ(hash_of_square(1), 1u);
    EXPECT_EQ(hash_of_square(2), 4u);
    EXPECT_EQ(hash_of_square(p - 1), 1u);
    EXPECT_EQ(hash_of_square(p - 2), 4u);
    EXPECT_EQ(hash_of_square(std::uint64_t{1} << 60), 0x800000000000000u);
    EXPECT_EQ(hash_of_square(0x123456789abcdef), 0x1cb03d3f72925a87u);
}

TEST(HashOfSquare, IsTheRemainder) {
    // By long division, also next to the root of every small residue.
    for (std::uint64_t i = 0; i < 2000; ++i) {
        for (const std::uint64_t h : {i, qmp::check_modulus - 1 - i, i << 50, (i << 49) + 12345}) {
            if (h >= qmp::check_modulus) continue;
            EXPECT_EQ(hash_of_square(h),
                      static_cast<std::uint64_t>(qmp::DoubleWord{h} * h % qmp::check_modulus));
        }
    }
}

// A workload with its memory and tables.
class Prepared {
  public:
    Prepared(const StressTest& test, const StressTest& sized, std::uint64_t units)
        : size_(stress_test_size(sized, units)),
          memory_(nullptr, size_.part_bytes / 8),
          table_memory_(nullptr, size_.table_bytes / 8) {
        const TwiddleReach reach = sized.twiddle_reach(units);
        if (reach.product_words > 0) {
            tables_.emplace(table_memory_.data(), size_.table_bytes, reach.product_words,
                            qmp::ParallelContext::sequential(), reach.fft_words);
        }
        work.emplace(test, size_, reinterpret_cast<std::byte*>(memory_.data()),
                     tables_ ? &*tables_ : nullptr);
        work->prepare();
    }
    ~Prepared() { memory_.check(); }
    std::uint64_t words() const { return size_.operand_words(); }

    std::optional<StressWorkload> work;

  private:
    StressTestSize size_;
    qmp::CheckedWords memory_;
    qmp::CheckedWords table_memory_;
    std::optional<qmp::TwiddleSet> tables_;
};

// The most units below a limit that the test takes.
std::uint64_t at_most(const StressTest& test, std::uint64_t units) {
    return std::min(units, test.max_bits() / 64);
}

class EveryTest : public testing::TestWithParam<std::size_t> {
  protected:
    const StressTest& test() const { return *stress_tests()[GetParam()].test; }
};

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryTest, testing::Range(std::size_t{0}, std::size_t{6}),
                         kelvara_test::code_of_test);

TEST_P(EveryTest, SquaresRightlyInTheMemoryThatItAskedFor) {
    // The shortest, odd lengths, both sides of what the algorithm tables would give to others, and long ones.
    for (const std::uint64_t units : {16u, 17u, 33u, 130u, 1000u, 1024u, 10240u, 10400u, 60000u, 100003u}) {
        if (at_most(test(), units) != units) continue;
        SCOPED_TRACE(units);
        Prepared prepared(test(), test(), units);
        EXPECT_TRUE(prepared.work->step());
        EXPECT_TRUE(prepared.work->step());
    }
}

TEST_P(EveryTest, SquaresRightlyOnEveryLevel) {
    kelvara_test::for_every_level([&](qmp::InstructionLevel) {
        Prepared prepared(test(), test(), at_most(test(), 12000));
        EXPECT_TRUE(prepared.work->step());
    });
}

TEST_P(EveryTest, FindsAWrongBitOfTheProduct) {
    const std::uint64_t units = at_most(test(), 12000);
    const std::uint64_t bits = 64 * stress_test_size(test(), units).product_words();
    for (const std::uint64_t bit : {std::uint64_t{0}, std::uint64_t{61}, bits / 2 + 7, bits - 1}) {
        SCOPED_TRACE(bit);
        const FaultyTest faulty(test(), 2, FaultyTest::Fault::product, bit);
        Prepared prepared(faulty, test(), units);
        EXPECT_TRUE(prepared.work->step());
        EXPECT_TRUE(prepared.work->step());
        EXPECT_FALSE(prepared.work->step());
        // The operand is as it was.
        EXPECT_TRUE(prepared.work->step());
    }
}

TEST_P(EveryTest, FindsAWrongBitOfTheOperandEverAfter) {
    const std::uint64_t units = at_most(test(), 12000);
    const std::uint64_t bits = 64 * stress_test_size(test(), units).operand_words();
    for (const std::uint64_t bit : {std::uint64_t{0}, bits / 2 + 7, bits - 1}) {
        SCOPED_TRACE(bit);
        const FaultyTest faulty(test(), 1, FaultyTest::Fault::operand, bit);
        Prepared prepared(faulty, test(), units);
        EXPECT_TRUE(prepared.work->step());
        EXPECT_FALSE(prepared.work->step());
        EXPECT_FALSE(prepared.work->step());
    }
}

TEST_P(EveryTest, TakesWhatTheMultiplicationFindsByItselfAsAnError) {
    const FaultyTest faulty(test(), 1, FaultyTest::Fault::exception);
    Prepared prepared(faulty, test(), at_most(test(), 1024));
    EXPECT_TRUE(prepared.work->step());
    EXPECT_FALSE(prepared.work->step());
    EXPECT_TRUE(prepared.work->step());
}

TEST_P(EveryTest, TellsItsWork) {
    for (const std::uint64_t n : {8u, 512u}) {
        const ProductWork work = test().work(n);
        EXPECT_GE(work.bytes, 40.0 * static_cast<double>(n));
        const std::string code = stress_tests()[GetParam()].code;
        EXPECT_EQ(work.operations > 0, code == "FFT" || code == "VST");
    }
}

}  // namespace
}  // namespace kelvara
