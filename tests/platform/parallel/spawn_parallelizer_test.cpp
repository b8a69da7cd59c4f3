// The framework with a thread for each task: where tasks run, exceptions, and threads that are not granted.
#include "platform/parallel/spawn_parallelizer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <set>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

#include "errors/exception.h"
#include "platform/parallel/framework_variants.h"
#include "platform/parallel/range_split_action.h"
#include "support/fatal.h"

namespace {

using kelvara_test::CountingAction;
using qmp::SpawnParallelizer;

// Grants some threads and no more.
class LimitedThreads {
  public:
    explicit LimitedThreads(int granted) : left_(granted) {}
    qmp::StartThread starter() {
        return [this](std::function<void()> work) {
            if (left_.fetch_sub(1) <= 0) {
                throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again),
                                        "no thread");
            }
            return qmp::start_child_thread(std::move(work));
        };
    }

  private:
    std::atomic<int> left_;
};

TEST(SpawnParallelizer, TheFirstOfAPairRunsOnANewThread) {
    SpawnParallelizer framework;
    std::thread::id a_on;
    std::thread::id b_on;
    auto run_a = [&](std::uint64_t) { a_on = std::this_thread::get_id(); };
    auto run_b = [&](std::uint64_t) { b_on = std::this_thread::get_id(); };
    qmp::FunctionAction a(run_a);
    qmp::FunctionAction b(run_b);
    framework.run_in_parallel(a, b);
    EXPECT_NE(a_on, std::this_thread::get_id());
    EXPECT_EQ(b_on, std::this_thread::get_id());
    EXPECT_EQ(framework.to_string(4), "Thread Spawn (1 Thread/Task)  ->  4 / ?");
}

TEST(SpawnParallelizer, EveryTaskOfARangeHasAThreadAndTheCallerTakesTheLast) {
    SpawnParallelizer framework;
    constexpr std::uint64_t n = 20;
    std::vector<std::thread::id> threads(n);
    std::atomic<std::uint64_t> present{0};
    auto work = [&](std::uint64_t index) {
        threads[index] = std::this_thread::get_id();
        ++present;
        while (present < n) std::this_thread::yield();  // ends only if all run at once
    };
    qmp::FunctionAction action(work);
    framework.run_in_parallel(action, 0, n);
    EXPECT_EQ(std::set<std::thread::id>(threads.begin(), threads.end()).size(), n);
    EXPECT_EQ(threads[n - 1], std::this_thread::get_id());
}

TEST(SpawnParallelizer, AnExceptionOnTheCallingThreadWaitsForTheOtherThread) {
    SpawnParallelizer framework;
    std::atomic<bool> a_finished{false};
    auto run_a = [&](std::uint64_t) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        a_finished = true;
    };
    auto run_b = [](std::uint64_t) { throw std::runtime_error("b"); };
    qmp::FunctionAction a(run_a);
    qmp::FunctionAction b(run_b);
    EXPECT_THROW(framework.run_in_parallel(a, b), std::runtime_error);
    EXPECT_TRUE(a_finished);
}

TEST(SpawnParallelizer, APairWithoutAThreadIsASystemErrorBeforeAnythingRan) {
    LimitedThreads none(0);
    SpawnParallelizer framework(none.starter());
    CountingAction action(1);
    EXPECT_THROW(framework.run_in_parallel(action, action), std::system_error);
    EXPECT_TRUE(action.exactly_once(0, 0));
}

TEST(SpawnParallelizer, ARangeThatRunsOutOfThreadsFinishesWhatItStarted) {
    LimitedThreads one(1);
    SpawnParallelizer framework(one.starter());
    std::atomic<int> finished{0};
    auto work = [&](std::uint64_t) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        ++finished;
    };
    qmp::FunctionAction action(work);
    // Task 0 has the thread; the caller keeps tasks 1 and 2, whose halving needs another.
    EXPECT_THROW(framework.run_in_parallel(action, 0, 3), std::system_error);
    EXPECT_EQ(finished.load(), 1);
}

#if GTEST_HAS_DEATH_TEST
template <typename Thrown>
void throw_on_a_new_thread(Thrown thrown) {
    SpawnParallelizer framework;
    const auto caller = std::this_thread::get_id();
    auto work = [&](std::uint64_t) {
        if (std::this_thread::get_id() != caller) throw thrown;
    };
    qmp::FunctionAction action(work);
    framework.run_in_parallel(action, 0, 4);
}

TEST(SpawnDeathTest, AnExceptionOnANewThreadEndsTheProgram) {
    EXPECT_FATAL(throw_on_a_new_thread(qmp::ArithmeticException("f()", "Bad sum.")),
                 "Exception Encountered: ArithmeticException\n\nIn Function: f\\(\\)\n\nBad sum.\n\n"
                 "\nFATAL ERROR: Unhandled exception in child thread.\n");
    EXPECT_FATAL(throw_on_a_new_thread(std::runtime_error("out of luck")),
                 "\nout of luck\n\nFATAL ERROR: Unhandled exception in child thread.\n");
    EXPECT_FATAL(throw_on_a_new_thread(42), "^\nFATAL ERROR: Unhandled exception in child thread.\n");
}

TEST(SpawnDeathTest, AThreadThatANewThreadIsNotGrantedEndsTheProgram) {
    EXPECT_FATAL(
        {
            LimitedThreads one(1);
            SpawnParallelizer framework(one.starter());
            CountingAction action(3);
            // [0, 2) goes to the one thread, which finds no second for its own halves.
            qmp::RangeSplitAction lower(framework, action, 0, 2);
            qmp::RangeSplitAction upper(framework, action, 2, 3);
            framework.run_in_parallel(lower, upper);
        },
        "no thread.*\n\nFATAL ERROR: Unhandled exception in child thread.\n");
}
#endif

}  // namespace
