#include "platform/parallel/run_on_threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <stdexcept>
#include <system_error>
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

TEST(RunOnThreads, HandsItsValueToEveryThread) {
    std::atomic<int> right{0};
    auto work = [&](std::uint64_t) {
        if (qmp::thread_value() == 0xfedcba98) ++right;
    };
    qmp::FunctionAction action(work);
    qmp::run_on_threads(action, 0, 5, 0xfedcba98);
    EXPECT_EQ(right.load(), 5);
    EXPECT_EQ(qmp::thread_value(), 0u);
}

TEST(RunOnThreads, EndsWithASystemErrorAfterTheOthersWhenAThreadCannotBeCreated) {
    std::atomic<int> finished{0};
    auto work = [&](std::uint64_t index) {
        EXPECT_LT(index, 7u);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        ++finished;
    };
    qmp::FunctionAction action(work);
    int granted = 3;
    const auto start_three = [&](std::function<void()> thread_work) {
        if (granted-- == 0) {
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        }
        return qmp::start_child_thread(std::move(thread_work));
    };
    EXPECT_THROW(qmp::run_on_threads(action, 4, 10, 0, start_three), std::system_error);
    EXPECT_EQ(finished.load(), 3);
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
