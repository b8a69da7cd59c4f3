// What every framework promises, and what distinguishes the ranges of the Push Pool.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "errors/exception.h"
#include "platform/parallel/parallel_context.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/range_split_action.h"
#include "platform/parallel/registry.h"
#include "platform/parallel/serial_parallelizer.h"
#include "support/fatal.h"
#include "support/random_words.h"

namespace {

using qmp::BasicParallelizer;

// Every framework of the build, the Push Pool in its variants.
struct Variant {
    std::string name;
    std::string key;
    std::uint64_t limit = 0;
    bool randomize = true;

    std::unique_ptr<BasicParallelizer> make() const {
        auto framework = qmp::make_parallelizer(key);
        framework->threads = limit;
        if (auto* pool = dynamic_cast<qmp::PushPoolParallelizer*>(framework.get()))
            pool->set_randomize(randomize);
        return framework;
    }
};

std::vector<Variant> variants() {
    return {{"none", "none"},
            {"pushpool", "pushpool"},
            {"pushpool_in_order", "pushpool", 0, false},
            {"pushpool_limit_1", "pushpool", 1},
            {"pushpool_limit_2", "pushpool", 2},
            {"pushpool_limit_7_in_order", "pushpool", 7, false}};
}

class EveryFramework : public testing::TestWithParam<Variant> {};

INSTANTIATE_TEST_SUITE_P(Variants, EveryFramework, testing::ValuesIn(variants()),
                         [](const auto& variant) { return variant.param.name; });

// Counts the runs of each task.
class CountingAction : public qmp::BasicAction {
  public:
    explicit CountingAction(std::uint64_t size) : runs_(size) {}
    void run(std::uint64_t index) override { runs_.at(index).fetch_add(1, std::memory_order_relaxed); }
    bool exactly_once(std::uint64_t start, std::uint64_t end) const {
        for (std::uint64_t i = 0; i < runs_.size(); ++i) {
            if (runs_[i] != (i >= start && i < end ? 1 : 0)) return false;
        }
        return true;
    }

  private:
    std::vector<std::atomic<int>> runs_;
};

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
    // Task 0 runs on the calling thread in every framework, and first in the serial one.
    auto work = [&](std::uint64_t index) {
        if (index == 0) throw std::runtime_error("task 0");
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        ++others;
    };
    qmp::FunctionAction action(work);
    const bool serial = std::string(framework->get_type_name()) == "none";
    EXPECT_THROW(framework->run_in_parallel(action, 0, 8), std::runtime_error);
    EXPECT_EQ(others.load(), serial ? 0 : 7);
}

// Work that checks itself: a sum over a range whose halves recurse through the framework.
std::uint64_t nested_sum(BasicParallelizer& framework, std::uint64_t begin, std::uint64_t end,
                         std::uint64_t depth, kelvara_test::Random random) {
    if (depth == 0 || end - begin < 2) {
        std::uint64_t sum = 0;
        for (std::uint64_t i = begin; i < end; ++i) sum += i * i;
        return sum;
    }
    const std::uint64_t tasks = random.between(1, 40);
    const qmp::BlockCut cut = qmp::BlockCut::of(end - begin, tasks, 1);
    std::vector<std::uint64_t> sums(cut.count, 0);
    std::uint64_t salt = random.next();
    qmp::ParallelContext{tasks, &framework}.run(0, cut.count, [&](std::uint64_t i) {
        sums[i] = nested_sum(framework, begin + cut.begin(i), begin + cut.end(i, end - begin), depth - 1,
                             kelvara_test::Random(salt + i));
    });
    std::uint64_t total = 0;
    for (const std::uint64_t sum : sums) total += sum;
    return total;
}

TEST_P(EveryFramework, SoakOfNestedRanges) {
    const auto framework = GetParam().make();
    const std::uint64_t rounds = 6 * kelvara_test::multiplier();
    for (std::uint64_t round = 0; round < rounds; ++round) {
        const std::uint64_t n = 300 + round;
        std::uint64_t expected = 0;
        for (std::uint64_t i = 0; i < n; ++i) expected += i * i;
        framework->warm_up();
        ASSERT_EQ(nested_sum(*framework, 0, n, 2, kelvara_test::Random(round)), expected);
        framework->reset();
    }
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

TEST(PushPoolParallelizer, DispatchesSixteenTasksFlatAndHalvesSeventeen) {
    // All tasks wait for one another: a flat range of 16 needs 15 workers.
    for (const std::uint64_t n : {std::uint64_t{16}, std::uint64_t{17}}) {
        qmp::PushPoolParallelizer framework;
        std::atomic<std::uint64_t> arrived{0};
        std::mutex lock;
        std::vector<std::uint64_t> on_caller;
        const auto caller = std::this_thread::get_id();
        auto meet = [&](std::uint64_t index) {
            if (std::this_thread::get_id() == caller) {
                const std::lock_guard<std::mutex> guard(lock);
                on_caller.push_back(index);
            }
            ++arrived;
            while (arrived < n) std::this_thread::yield();
        };
        qmp::FunctionAction action(meet);
        framework.run_in_parallel(action, 0, n);
        // Flat: the caller takes the first. Halved into [0, 8) and [8, 17): the upper half has a worker of
        // its own, which takes task 8.
        EXPECT_EQ(on_caller, (std::vector<std::uint64_t>{0}));
        EXPECT_EQ(framework.workers(), n - 1);
    }
}

TEST(PushPoolParallelizer, AThreadLimitBoundsTheWorkersAndTheCallerRunsTheRest) {
    qmp::PushPoolParallelizer framework;
    framework.threads = 2;
    std::atomic<int> on_workers{0};
    std::atomic<int> most{0};
    std::atomic<int> by_caller{0};
    const auto caller = std::this_thread::get_id();
    auto work = [&](std::uint64_t) {
        if (std::this_thread::get_id() == caller) {
            ++by_caller;
            return;
        }
        const int present = ++on_workers;
        int seen = most.load();
        while (seen < present && !most.compare_exchange_weak(seen, present)) {
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        --on_workers;
    };
    qmp::FunctionAction action(work);
    framework.run_in_parallel(action, 0, 16);
    EXPECT_EQ(framework.workers(), 2u);
    EXPECT_LE(most.load(), 2);
    EXPECT_GE(by_caller.load(), 1);
}

TEST(PushPoolParallelizer, WarmUpLeavesTheLastThreadToTheCaller) {
    qmp::PushPoolParallelizer framework;
    framework.threads = 5;
    framework.warm_up();
    EXPECT_EQ(framework.workers(), 4u);
    // A range starts the full limit, one more.
    CountingAction action(2);
    framework.run_in_parallel(action, 0, 2);
    EXPECT_EQ(framework.workers(), 5u);
}

TEST(PushPoolParallelizer, WarmUpWithoutLimitStartsTwoThreadsForEachProcessor) {
    qmp::PushPoolParallelizer framework;
    framework.warm_up();
    EXPECT_EQ(framework.workers(), 2 * qmp::default_task_decomposition() - 1);
}

TEST(PushPoolParallelizer, ResetEmptiesThePoolAndKeepsItsSetting) {
    for (const bool on : {false, true}) {
        qmp::PushPoolParallelizer framework;
        framework.set_randomize(on);
        framework.warm_up();
        framework.reset();
        EXPECT_EQ(framework.workers(), 0u);
        EXPECT_EQ(framework.randomize(), on);
        CountingAction action(8);
        framework.run_in_parallel(action, 0, 8);
        EXPECT_TRUE(action.exactly_once(0, 8));
    }
}

TEST(PushPoolParallelizer, AWaitingPairGetsAWorker) {
    qmp::PushPoolParallelizer framework;
    std::thread::id a_on;
    std::thread::id b_on;
    auto run_a = [&](std::uint64_t) { a_on = std::this_thread::get_id(); };
    auto run_b = [&](std::uint64_t) { b_on = std::this_thread::get_id(); };
    qmp::FunctionAction a(run_a);
    qmp::FunctionAction b(run_b);
    framework.run_in_parallel(a, b);
    EXPECT_EQ(a_on, std::this_thread::get_id());
    EXPECT_NE(b_on, a_on);
}

TEST(PushPoolParallelizer, AnExceptionOfATaskThatTheCallerRanForWantOfAWorkerPropagates) {
    qmp::PushPoolParallelizer framework;
    framework.threads = 1;  // no worker exists before the first range
    auto nothing = [](std::uint64_t) {};
    auto fail = [](std::uint64_t) { throw std::runtime_error("b"); };
    qmp::FunctionAction a(nothing);
    qmp::FunctionAction b(fail);
    EXPECT_THROW(framework.run_in_parallel(a, b), std::runtime_error);
}

#if GTEST_HAS_DEATH_TEST
template <typename Thrown>
void throw_on_a_worker(Thrown thrown) {
    qmp::PushPoolParallelizer framework;
    const auto caller = std::this_thread::get_id();
    auto work = [&](std::uint64_t) {
        if (std::this_thread::get_id() != caller) throw thrown;
    };
    qmp::FunctionAction action(work);
    framework.run_in_parallel(action, 0, 4);
}

TEST(PushPoolDeathTest, AnExceptionOnAWorkerEndsTheProgram) {
    EXPECT_FATAL(throw_on_a_worker(qmp::ArithmeticException("f()", "Bad sum.")),
                 "PushPoolWorker: An exception was thrown from a task.\n\n"
                 "Exception Encountered: ArithmeticException\n\nIn Function: f\\(\\)\n\nBad sum.\n");
    EXPECT_FATAL(throw_on_a_worker(std::runtime_error("out of luck")),
                 "PushPoolWorker: An exception was thrown from a task.\n\nout of luck\n");
}
#endif

}  // namespace
