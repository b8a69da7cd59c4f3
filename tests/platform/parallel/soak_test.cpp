// Nested ranges and pairs from several threads at once, in every framework: every task exactly once, and sums
// that agree. KELVARA_TEST_MULTIPLIER makes it longer.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/parallel/framework_variants.h"
#include "platform/parallel/parallel_context.h"
#include "support/random_words.h"

namespace {

using kelvara_test::FrameworkVariant;
using kelvara_test::Random;
using qmp::BasicParallelizer;

class Soak : public testing::TestWithParam<FrameworkVariant> {};

INSTANTIATE_TEST_SUITE_P(Variants, Soak, testing::ValuesIn(kelvara_test::framework_variants()),
                         kelvara_test::framework_variant_name);

// A piece of work that cuts itself up at random, through the framework, and visits every item of its range.
class NestedWork {
  public:
    NestedWork(BasicParallelizer& framework, std::uint64_t items) : framework_(framework), visits_(items) {}

    // The sum of the squares of [begin, end).
    std::uint64_t sum(std::uint64_t begin, std::uint64_t end, std::uint64_t depth, Random random) {
        if (depth == 0 || end - begin < 2) return visit(begin, end);
        switch (random.between(0, 2)) {
            case 0:
                return by_range(begin, end, depth, random);
            case 1:
                return by_pair(begin, end, depth, random, false);
            default:
                return by_pair(begin, end, depth, random, true);
        }
    }
    bool every_item_once() const {
        for (const auto& visits : visits_) {
            if (visits != 1) return false;
        }
        return true;
    }

  private:
    std::uint64_t visit(std::uint64_t begin, std::uint64_t end) {
        std::uint64_t sum = 0;
        for (std::uint64_t i = begin; i < end; ++i) {
            visits_.at(i).fetch_add(1, std::memory_order_relaxed);
            sum += i * i;
        }
        return sum;
    }

    std::uint64_t by_range(std::uint64_t begin, std::uint64_t end, std::uint64_t depth, Random random) {
        const std::uint64_t tasks = random.between(1, 24);
        const qmp::BlockCut cut = qmp::BlockCut::of(end - begin, tasks, 1);
        std::vector<std::uint64_t> sums(cut.count, 0);
        const std::uint64_t salt = random.next();
        qmp::ParallelContext{tasks, &framework_}.run(0, cut.count, [&](std::uint64_t i) {
            sums[i] = sum(begin + cut.begin(i), begin + cut.end(i, end - begin), depth - 1, Random(salt + i));
        });
        std::uint64_t total = 0;
        for (const std::uint64_t part : sums) total += part;
        return total;
    }

    // A pair that always goes to the framework, or only where a processor is idle.
    std::uint64_t by_pair(std::uint64_t begin, std::uint64_t end, std::uint64_t depth, Random random,
                          bool only_when_idle) {
        const std::uint64_t middle = random.between(begin, end);
        const std::uint64_t salt = random.next();
        std::uint64_t lower = 0;
        std::uint64_t upper = 0;
        auto run_lower = [&](std::uint64_t = 0) { lower = sum(begin, middle, depth - 1, Random(salt)); };
        auto run_upper = [&](std::uint64_t = 0) { upper = sum(middle, end, depth - 1, Random(salt + 1)); };
        if (only_when_idle) {
            qmp::ParallelContext{2, &framework_}.run_pair(run_lower, run_upper);
        } else {
            qmp::FunctionAction a(run_lower);
            qmp::FunctionAction b(run_upper);
            framework_.run_in_parallel(a, b);
        }
        return lower + upper;
    }

    BasicParallelizer& framework_;
    std::vector<std::atomic<int>> visits_;
};

bool sums_agree(BasicParallelizer& framework, std::uint64_t items, std::uint64_t salt) {
    std::uint64_t expected = 0;
    for (std::uint64_t i = 0; i < items; ++i) expected += i * i;
    NestedWork work(framework, items);
    return work.sum(0, items, 3, Random(salt)) == expected && work.every_item_once();
}

TEST_P(Soak, NestedWorkOfOneThread) {
    const auto framework = GetParam().make();
    const std::uint64_t rounds = 6 * kelvara_test::multiplier();
    for (std::uint64_t round = 0; round < rounds; ++round) {
        framework->warm_up();
        ASSERT_TRUE(sums_agree(*framework, 300 + round, round)) << round;
        framework->reset();
    }
}

TEST_P(Soak, NestedWorkOfSeveralThreads) {
    const auto framework = GetParam().make();
    const std::uint64_t rounds = 2 * kelvara_test::multiplier();
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::uint64_t t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (std::uint64_t round = 0; round < rounds; ++round) {
                if (!sums_agree(*framework, 100 + t, round * 4 + t)) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong.load(), 0);
}

}  // namespace
