#include "platform/parallel/run_on_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/fatal.h"

namespace {

TEST(RunOnThreads, GivesEveryTaskAThreadOfItsOwn) {
    std::vector<std::thread::id> threads(12);
    std::atomic<int> present{0};
    auto work = [&](std::uint64_t index) {
        threads[index] = std::this_thread::get_id();
        ++present;
        while (present < 10) std::this_thread::yield();  // ends only if all ten run at once
    };
    qmp::FunctionAction action(work);
    qmp::run_on_threads(action, 2, 12);
    std::set<std::thread::id> different(threads.begin() + 2, threads.end());
    EXPECT_EQ(different.size(), 10u);
    EXPECT_EQ(different.count(std::this_thread::get_id()), 0u);
    EXPECT_EQ(threads[0], std::thread::id());
}

TEST(RunOnThreads, AnEmptyRangeStartsNothing) {
    auto work = [](std::uint64_t) { FAIL(); };
    qmp::FunctionAction action(work);
    qmp::run_on_threads(action, 3, 3);
    qmp::run_on_threads(action, 4, 3);
}

#if GTEST_HAS_DEATH_TEST
TEST(RunOnThreadsDeathTest, AnEscapingExceptionEndsTheProgram) {
    auto work = [](std::uint64_t) { throw std::runtime_error("out of luck"); };
    qmp::FunctionAction action(work);
    EXPECT_FATAL(qmp::run_on_threads(action, 0, 1),
                 "\nout of luck\n\nFATAL ERROR: Unhandled exception in child thread.\n");
}
#endif

}  // namespace
