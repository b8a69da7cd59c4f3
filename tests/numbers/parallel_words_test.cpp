// Copies, products with a word and carries over blocks of words.
#include <gtest/gtest.h>

#include "multiply/basecase/word_kernels.h"
#include "numbers/carry_resolution.h"
#include "numbers/number_buffers.h"
#include "numbers/parallel_copy.h"
#include "numbers/word_multiply.h"
#include "platform/parallel/registry.h"
#include "support/fatal.h"

namespace {

using namespace kelvara_test;
using qmp::BlockCut;
using qmp::BlockState;
using qmp::CarryStatus;
using qmp::ParallelContext;
using qmp::Word;

// Counts the tasks of each run.
class CountingParallelizer final : public qmp::BasicParallelizer {
  public:
    void run_in_parallel(qmp::BasicAction& action, std::uint64_t start, std::uint64_t end) override {
        tasks += end - start;
        for (std::uint64_t i = end; i-- > start;) action.run(i);
    }
    void run_in_parallel(qmp::BasicAction& a, qmp::BasicAction& b) override {
        b.run(0);
        a.run(0);
    }
    const char* get_type_name() const override { return "counting"; }
    const char* get_display_name() const override { return "Counting"; }
    std::uint64_t tasks = 0;
};

TEST(ParallelCopy, BlocksAndTheirEdges) {
    struct Case {
        std::uint64_t words, tasks, expected_tasks;
    };
    for (const Case& c :
         {Case{0, 8, 0}, Case{1, 8, 0}, Case{16383, 8, 0}, Case{16384, 8, 0}, Case{16385, 8, 2},
          Case{16384 * 8, 8, 8}, Case{16384 * 8 - 1, 8, 8}, Case{16384 * 8 + 1, 8, 8}, Case{16384 * 3, 1, 0},
          Case{100000, 4, 4}, Case{100000, 64, 7}}) {
        Random random(c.words);
        const Words source = make_words(random, c.words);
        WatchedWords destination(c.words);
        CountingParallelizer framework;
        qmp::parallel_copy({c.tasks, &framework}, destination.data(), source.data(), c.words);
        EXPECT_TRUE(Words(destination.data(), destination.data() + c.words) == source);
        EXPECT_EQ(framework.tasks, c.expected_tasks) << c.words << " words, " << c.tasks << " tasks";
    }
}

TEST(WordMultiply, TasksAndTheirLimits) {
    struct Case {
        std::uint64_t words, tasks, expected_tasks;
    };
    for (const Case& c : {Case{19999, 8, 0}, Case{20000, 8, 0}, Case{20001, 8, 2}, Case{20001, 1, 0},
                          Case{160000, 8, 8}, Case{160000, 1000, 8}, Case{1300000, 1000, 64}}) {
        const Words source(c.words, all_ones);
        WatchedWords destination(c.words);
        CountingParallelizer framework;
        const Word top =
            qmp::multiply_by_word({c.tasks, &framework}, destination.data(), source.data(), c.words, 3);
        EXPECT_EQ(framework.tasks, c.expected_tasks) << c.words << " words, " << c.tasks << " tasks";
        EXPECT_EQ(top, 2u);
        EXPECT_EQ(destination.data()[0], all_ones - 2);
        for (std::uint64_t i = 1; i < c.words; ++i) ASSERT_EQ(destination.data()[i], all_ones);
    }
}

TEST(WordMultiply, EqualsTheSequentialKernel) {
    Random random(1);
    const auto framework = qmp::make_default_parallelizer();
    for (Pattern pattern : all_patterns) {
        for (std::uint64_t n : {40000, 60001, 79999}) {
            for (Word w : {Word{1}, Word{2}, all_ones, Word{1} << 63, random.next()}) {
                const Words a = make_words(random, n, pattern);
                Words expected(n);
                const Word expected_top = qmp::mul_word(expected.data(), a.data(), n, w);
                for (std::uint64_t tasks : {2, 3, 64}) {
                    Words in_place = a;
                    EXPECT_EQ(qmp::multiply_by_word({tasks, framework.get()}, in_place.data(),
                                                    in_place.data(), n, w),
                              expected_top);
                    EXPECT_TRUE(in_place == expected);
                }
            }
        }
    }
}

// The blocks above the first are all ones after their own product, so that the first one's carry runs
// through to the top.
TEST(WordMultiply, ACarryRunsThroughBlocksOfAllOnes) {
    const std::uint64_t n = 80000;
    Words a(n, 0);
    const Word third = all_ones / 3;  // 3 * third is all ones
    std::fill(a.begin() + 20000, a.end(), third);
    a[19999] = all_ones;
    Words expected(n);
    const Word expected_top = qmp::mul_word(expected.data(), a.data(), n, 3);
    ASSERT_EQ(expected[20000], 1u);
    ASSERT_EQ(expected[20001], 0u);
    ASSERT_EQ(expected_top, 1u);
    CountingParallelizer framework;
    WatchedWords destination(n);
    EXPECT_EQ(qmp::multiply_by_word({4, &framework}, destination.data(), a.data(), n, 3), expected_top);
    EXPECT_EQ(framework.tasks, 4u);
    EXPECT_TRUE(Words(destination.data(), destination.data() + n) == expected);
}

TEST(CarryResolution, StatusOfABlock) {
    struct Case {
        Words words;
        int carry;
        Words expected;
        BlockState state;
        int out;
    };
    const Case cases[] = {
        {{0, 0}, 0, {0, 0}, BlockState::zeros, 0},
        {{all_ones, all_ones}, 0, {all_ones, all_ones}, BlockState::ones, 0},
        {{all_ones, 0}, 0, {all_ones, 0}, BlockState::mixed, 0},
        {{0, all_ones}, 0, {0, all_ones}, BlockState::mixed, 0},
        {{5, 5}, 0, {5, 5}, BlockState::mixed, 0},
        {{all_ones, all_ones}, 1, {0, 0}, BlockState::zeros, 1},
        {{0, 0}, -1, {all_ones, all_ones}, BlockState::ones, -1},
        {{all_ones - 1, all_ones}, 1, {all_ones, all_ones}, BlockState::ones, 0},
        {{1, 0}, -1, {0, 0}, BlockState::zeros, 0},
        {{0, 0}, 1, {1, 0}, BlockState::mixed, 0},
        {{all_ones}, -1, {all_ones - 1}, BlockState::mixed, 0},
    };
    for (const Case& c : cases) {
        Words words = c.words;
        const CarryStatus status = qmp::bp_ksr_carry(c.carry, words.data(), words.size());
        EXPECT_EQ(words, c.expected);
        EXPECT_EQ(status.state, c.state);
        EXPECT_EQ(status.carry, c.out);
    }
    static_assert(sizeof(CarryStatus) == 2);
}

#if GTEST_HAS_DEATH_TEST
TEST(CarryResolutionDeathTest, NoWords) {
    EXPECT_FATAL(qmp::bp_ksr_carry(1, nullptr, 0), "bp_ksr_carry\\(\\): Length cannot be zero\\.");
}
#endif

// Every sequence of block kinds and carries, against one carry after the other.
TEST(CarryResolution, EverySequenceOfBlocks) {
    Random random(2);
    const auto framework = qmp::make_default_parallelizer();
    for (std::uint64_t block : {7000, 3}) {  // above and below the threshold for the parallel way
        const int rounds = block == 3 ? 4000 : 300;
        for (int round = 0; round < rounds; ++round) {
            const std::uint64_t blocks = random.between(block == 3 ? 1 : 3, 6);
            const std::uint64_t n = blocks * block - (round % 3 == 0 ? block / 2 : 0);
            const BlockCut cut{block, blocks};
            Words words(n, 0);
            std::vector<std::int8_t> carries(blocks);
            for (std::uint64_t i = 0; i < blocks; ++i) {
                const auto fill = [&](Word w) {
                    std::fill(words.begin() + static_cast<std::ptrdiff_t>(cut.begin(i)),
                              words.begin() + static_cast<std::ptrdiff_t>(cut.end(i, n)), w);
                };
                const std::uint64_t kind = random.between(0, 4);
                fill(kind % 2 ? all_ones : 0);
                if (kind == 2) words[cut.begin(i)] = 1;
                if (kind == 3) words[cut.begin(i)] = all_ones - 1;
                if (kind == 4) words[cut.end(i, n) - 1] = 77;
                carries[i] = static_cast<std::int8_t>(static_cast<int>(random.between(0, 2)) - 1);
            }
            Words expected = words;
            int expected_out = 0;
            for (std::uint64_t i = 0; i < blocks; ++i) {
                expected_out +=
                    qmp::add_signed_carry(expected.data() + cut.begin(i), n - cut.begin(i), carries[i]);
            }
            std::vector<CarryStatus> status(blocks);
            const int out = qmp::resolve_carries({3, framework.get()}, words.data(), n, cut, carries.data(),
                                                 status.data());
            EXPECT_EQ(out, expected_out);
            ASSERT_TRUE(words == expected);
        }
    }
}

}  // namespace
