// What every framework promises.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "errors/exception.h"
#include "platform/parallel/framework_variants.h"
#include "platform/parallel/parallel_context.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/range_split_action.h"
#include "platform/parallel/registry.h"
#include "platform/parallel/serial_parallelizer.h"
#include "support/fatal.h"
#include "support/random_words.h"

namespace {

using kelvara_test::CountingAction;
using kelvara_test::FrameworkVariant;
using qmp::BasicParallelizer;

class EveryFramework : public testing::TestWithParam<FrameworkVariant> {};

INSTANTIATE_TEST_SUITE_P(Variants, EveryFramework, testing::ValuesIn(kelvara_test::framework_variants()),
                         kelvara_test::framework_variant_name);

TEST_P(EveryFramework, RunsEveryTaskOnce) {
    const auto framework = GetParam().make();
    for (const std::uint64_t start : {0, 5}) {
        for (const std::uint64_t n : {0, 1, 2, 3, 15, 16, 17, 18, 31, 32, 33, 34, 35, 64, 70}) {
            CountingAction action(80);
            framework->run_in_parallel(action, start, start + n);
            ASSERT_TRUE(action.exactly_once(start, start + n)) << start << " " << n;
        }
    }
}

TEST_P(EveryFramework, AnEmptyOrReversedRangeRunsNothing) {
    const auto framework = GetParam().make();
    CountingAction action(4);
    framework->run_in_parallel(action, 2, 2);
    framework->run_in_parallel(action, 3, 1);
    EXPECT_TRUE(action.exactly_once(0, 0));
}

TEST_P(EveryFramework, ASingleTaskRunsOnTheCallingThread) {
    const auto framework = GetParam().make();
    framework->warm_up();
    std::thread::id ran_on;
    auto note_thread = [&](std::uint64_t) { ran_on = std::this_thread::get_id(); };
    qmp::FunctionAction action(note_thread);
    framework->run_in_parallel(action, 7, 8);
    EXPECT_EQ(ran_on, std::this_thread::get_id());
}

TEST_P(EveryFramework, RunsBothOfAPairWithIndexZero) {
    const auto framework = GetParam().make();
    for (int repetition = 0; repetition < 100; ++repetition) {
        std::uint64_t a = 99;
        std::uint64_t b = 99;
        auto set_a = [&](std::uint64_t index) { a = index; };
        auto set_b = [&](std::uint64_t index) { b = index; };
        qmp::FunctionAction action_a(set_a);
        qmp::FunctionAction action_b(set_b);
        framework->run_in_parallel(action_a, action_b);
        ASSERT_EQ(a, 0u);
        ASSERT_EQ(b, 0u);
    }
}

TEST_P(EveryFramework, AnExceptionOnTheCallingThreadPropagatesAfterTheOthersHaveFinished) {
    const auto framework = GetParam().make();
    std::atomic<int> others{0};
    // The calling thread keeps the upper halves, or the first task of a flat range.
    const std::uint64_t failing = GetParam().halves() ? 7 : 0;
    auto work = [&](std::uint64_t index) {
        if (index == failing) throw std::runtime_error("a task");
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        ++others;
    };
    qmp::FunctionAction action(work);
    const bool serial = std::string(framework->get_type_name()) == "none";
    EXPECT_THROW(framework->run_in_parallel(action, 0, 8), std::runtime_error);
    EXPECT_EQ(others.load(), serial ? 0 : 7);
}

TEST_P(EveryFramework, MayBeUsedByManyThreadsAtOnce) {
    const auto framework = GetParam().make();
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (std::uint64_t t = 0; t < 6; ++t) {
        threads.emplace_back([&, t] {
            for (std::uint64_t round = 0; round < 8; ++round) {
                CountingAction action(64);
                framework->run_in_parallel(action, t, t + 20 + round);
                if (!action.exactly_once(t, t + 20 + round)) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong.load(), 0);
}

TEST(SerialParallelizer, RunsInOrder) {
    qmp::SerialParallelizer framework;
    std::vector<std::uint64_t> order;
    auto note = [&](std::uint64_t index) { order.push_back(index); };
    qmp::FunctionAction action(note);
    framework.run_in_parallel(action, 3, 7);
    framework.run_in_parallel(action, action);
    EXPECT_EQ(order, (std::vector<std::uint64_t>{3, 4, 5, 6, 0, 0}));
}

TEST(ParallelContext, SequentialWorkStaysOnItsThread) {
    const qmp::ParallelContext context = qmp::ParallelContext::sequential();
    EXPECT_EQ(context.tds, 1u);
    std::set<std::thread::id> threads;
    context.run(0, 20, [&](std::uint64_t) { threads.insert(std::this_thread::get_id()); });
    context.run_pair([&] { threads.insert(std::this_thread::get_id()); },
                     [&] { threads.insert(std::this_thread::get_id()); });
    EXPECT_EQ(threads, (std::set<std::thread::id>{std::this_thread::get_id()}));
}

// Runs pairs on the calling thread and notes each range of the halving.
class NotingParallelizer : public BasicParallelizer {
  public:
    using BasicParallelizer::run_in_parallel;
    void run_in_parallel(qmp::BasicAction& action, std::uint64_t start, std::uint64_t end) override {
        ranges.emplace_back(start, end);
        BasicParallelizer::run_in_parallel(action, start, end);
    }
    void run_in_parallel(qmp::BasicAction& a, qmp::BasicAction& b) override {
        a.run(0);
        b.run(0);
    }
    const char* get_type_name() const override { return "noting"; }
    const char* get_display_name() const override { return "Noting"; }
    std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
};

TEST(RecursiveHalving, CutsOddRangesBelowTheMiddle) {
    NotingParallelizer framework;
    CountingAction action(5);
    framework.run_in_parallel(action, 0, 5);
    EXPECT_TRUE(action.exactly_once(0, 5));
    using Range = std::pair<std::uint64_t, std::uint64_t>;
    EXPECT_EQ(framework.ranges,
              (std::vector<Range>{{0, 5}, {0, 2}, {0, 1}, {1, 2}, {2, 5}, {2, 3}, {3, 5}, {3, 4}, {4, 5}}));
}

}  // namespace
