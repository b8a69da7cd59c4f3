// The framework over the system's thread pool, here over a fake: its calls, failures and exceptions.
#include "platform/parallel/windows_pool_parallelizer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "errors/system_exception.h"
#include "platform/parallel/framework_variants.h"
#include "platform/parallel/thread_pool_fake.h"
#include "support/fatal.h"

namespace {

using kelvara_test::CountingAction;
using kelvara_test::FakeThreadPool;
using qmp::WindowsPoolParallelizer;

TEST(WindowsPoolParallelizer, TheFirstOfAPairGoesToThePoolWhoseWorkIsClosed) {
    FakeThreadPool pool;
    WindowsPoolParallelizer framework(pool);
    std::thread::id a_on;
    std::thread::id b_on;
    auto run_a = [&](std::uint64_t) { a_on = std::this_thread::get_id(); };
    auto run_b = [&](std::uint64_t) {
        b_on = std::this_thread::get_id();
        EXPECT_EQ(pool.open.load(), 1);
    };
    qmp::FunctionAction a(run_a);
    qmp::FunctionAction b(run_b);
    framework.run_in_parallel(a, b);
    EXPECT_NE(a_on, std::this_thread::get_id());
    EXPECT_EQ(b_on, std::this_thread::get_id());
    EXPECT_EQ(pool.open.load(), 0);
    EXPECT_EQ(framework.to_string(4), "Windows Thread Pool  ->  4 / ?");
    EXPECT_STREQ(framework.get_type_name(), "winpool");
}

TEST(WindowsPoolParallelizer, ARefusalIsASystemExceptionBeforeAnythingRan) {
    FakeThreadPool pool;
    pool.granted = 0;
    WindowsPoolParallelizer framework(pool);
    CountingAction action(4);
    try {
        framework.run_in_parallel(action, 0, 4);
        FAIL() << "nothing was thrown";
    } catch (const qmp::SystemException& exception) {
        EXPECT_EQ(exception.function(), "CreateThreadpoolWork()");
        EXPECT_EQ(exception.message(), "Unable to create thread pool work.");
        EXPECT_EQ(exception.error_code(), 8u);
    }
    EXPECT_TRUE(action.exactly_once(0, 0));
}

TEST(WindowsPoolParallelizer, ARefusalLaterFinishesWhatWasSubmitted) {
    FakeThreadPool pool;
    pool.granted = 1;
    WindowsPoolParallelizer framework(pool);
    CountingAction action(3);
    EXPECT_THROW(framework.run_in_parallel(action, 0, 3), qmp::SystemException);
    EXPECT_TRUE(action.exactly_once(0, 1));
    EXPECT_EQ(pool.open.load(), 0);
}

TEST(WindowsPoolParallelizer, AnExceptionOnTheCallingThreadWaitsForThePool) {
    FakeThreadPool pool;
    WindowsPoolParallelizer framework(pool);
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
    EXPECT_EQ(pool.open.load(), 0);
}

#if GTEST_HAS_DEATH_TEST
template <typename Thrown>
void throw_in_the_pool(Thrown thrown) {
    FakeThreadPool pool;
    WindowsPoolParallelizer framework(pool);
    const auto caller = std::this_thread::get_id();
    auto work = [&](std::uint64_t) {
        if (std::this_thread::get_id() != caller) throw thrown;
    };
    qmp::FunctionAction action(work);
    framework.run_in_parallel(action, 0, 2);
}

TEST(WindowsPoolDeathTest, AnExceptionInThePoolEndsTheProgram) {
    EXPECT_FATAL(throw_in_the_pool(qmp::ArithmeticException("f()", "Bad sum.")),
                 "^\nException Encountered: ArithmeticException\n\nIn Function: f\\(\\)\n\nBad sum.\n\n$");
    EXPECT_FATAL(throw_in_the_pool(std::runtime_error("out of luck")), "^\nout of luck\n$");
    EXPECT_FATAL(throw_in_the_pool(42), "^\nFATAL ERROR: Unhandled exception in child thread.\n$");
}

TEST(WindowsPoolDeathTest, ARefusalInThePoolEndsTheProgram) {
    EXPECT_FATAL(
        {
            FakeThreadPool pool;
            pool.granted = 1;
            WindowsPoolParallelizer framework(pool);
            auto nested = [&](std::uint64_t index) {
                if (index == 0) framework.run_in_parallel(*new CountingAction(2), 0, 2);
            };
            qmp::FunctionAction action(nested);
            framework.run_in_parallel(action, 0, 2);
        },
        "System Exception Encountered: SystemException\n\nIn Function: +CreateThreadpoolWork\\(\\)\n"
        "Error Code: +8\n");
}
#endif

}  // namespace
