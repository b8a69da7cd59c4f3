// Ranges, limits and threads of the Push Pool as a framework.
#include "platform/parallel/push_pool_parallelizer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "errors/exception.h"
#include "platform/parallel/framework_variants.h"
#include "platform/parallel/registry.h"
#include "support/fatal.h"

namespace {

using kelvara_test::CountingAction;

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
