// The framework over the standard library's asynchronous calls: exceptions, menu, saved settings.
#include "platform/parallel/async_parallelizer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "config/text_cursor.h"
#include "errors/exception.h"
#include "support/console.h"

namespace {

using kelvara_test::printed_by;
using qmp::AsyncParallelizer;

constexpr auto async_or_deferred = std::launch::async | std::launch::deferred;

TEST(AsyncParallelizer, TheFirstOfAPairLeavesTheCallingThread) {
    AsyncParallelizer framework;
    std::thread::id a_on;
    std::thread::id b_on;
    auto run_a = [&](std::uint64_t) { a_on = std::this_thread::get_id(); };
    auto run_b = [&](std::uint64_t) { b_on = std::this_thread::get_id(); };
    qmp::FunctionAction a(run_a);
    qmp::FunctionAction b(run_b);
    framework.run_in_parallel(a, b);
    EXPECT_NE(a_on, std::this_thread::get_id());
    EXPECT_EQ(b_on, std::this_thread::get_id());
}

TEST(AsyncParallelizer, AnExceptionOfTheAsynchronousCallComesBackAsItIs) {
    for (const bool async_only : {true, false}) {
        AsyncParallelizer framework;
        if (!async_only) framework.handle_menu_option(4);
        bool b_ran = false;
        auto fail = [](std::uint64_t) { throw qmp::ArithmeticException("f()", "Bad sum."); };
        auto note = [&](std::uint64_t) { b_ran = true; };
        qmp::FunctionAction a(fail);
        qmp::FunctionAction b(note);
        EXPECT_THROW(framework.run_in_parallel(a, b), qmp::ArithmeticException);
        EXPECT_TRUE(b_ran);
    }
}

TEST(AsyncParallelizer, AnExceptionAnywhereInARangeComesBack) {
    AsyncParallelizer framework;
    for (std::uint64_t failing = 0; failing < 9; ++failing) {
        std::atomic<int> others{0};
        auto work = [&](std::uint64_t index) {
            if (index == failing) throw std::out_of_range("a task");
            ++others;
        };
        qmp::FunctionAction action(work);
        EXPECT_THROW(framework.run_in_parallel(action, 0, 9), std::out_of_range);
        EXPECT_EQ(others.load(), 8);
    }
}

TEST(AsyncParallelizer, AnExceptionOnTheCallingThreadWaitsForTheAsynchronousCall) {
    AsyncParallelizer framework;
    std::atomic<bool> a_finished{false};
    auto run_a = [&](std::uint64_t) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        a_finished = true;
        throw std::out_of_range("a");
    };
    auto run_b = [](std::uint64_t) { throw std::runtime_error("b"); };
    qmp::FunctionAction a(run_a);
    qmp::FunctionAction b(run_b);
    EXPECT_THROW(framework.run_in_parallel(a, b), std::runtime_error);
    EXPECT_TRUE(a_finished);
}

TEST(AsyncParallelizer, StartsWithAsynchronousCallsOnly) {
    AsyncParallelizer framework;
    EXPECT_TRUE(framework.async_only());
    EXPECT_EQ(framework.launch_policy(), std::launch::async);
    EXPECT_EQ(framework.to_string(16), "C++ std::async()  ->  16 / ?  (async only)");
    EXPECT_EQ(printed_by([&] { framework.print_summary(16); }),
              "C++ std::async()  ->  16 / ?  (async only)\n");
}

TEST(AsyncMenu, OptionFourTogglesThePolicy) {
    AsyncParallelizer framework;
    std::uint64_t highest = 0;
    EXPECT_EQ(printed_by([&] { highest = framework.print_menu_options(); }),
              "   4    Launch Policy:          std::launch::async\n\n");
    EXPECT_EQ(highest, 4u);

    framework.handle_menu_option(4);
    EXPECT_EQ(framework.launch_policy(), async_or_deferred);
    EXPECT_EQ(framework.to_string(1), "C++ std::async()  ->  1 / ?  (async | deferred)");
    EXPECT_EQ(printed_by([&] { framework.print_menu_options(); }),
              "   4    Launch Policy:          std::launch::async | std::launch::deferred\n\n");

    framework.handle_menu_option(4);
    EXPECT_EQ(framework.launch_policy(), std::launch::async);
    EXPECT_TRUE(framework.async_only());
    framework.handle_menu_option(5);
    EXPECT_TRUE(framework.async_only());
}

TEST(AsyncSettings, AreOneLine) {
    AsyncParallelizer framework;
    EXPECT_EQ(framework.print_settings(), "    async_only    :\t1\r\n");
    framework.handle_menu_option(4);
    EXPECT_EQ(framework.print_settings(), "    async_only    :\t0\r\n");
}

// The policy of a restored framework is not that of its summary, as ever.
TEST(AsyncSettings, RestoringLeavesTheLaunchPolicyAlone) {
    AsyncParallelizer framework;
    qmp::TextCursor off("    async_only    :\t0\r\n");
    framework.load_settings(off);
    EXPECT_FALSE(framework.async_only());
    EXPECT_EQ(framework.launch_policy(), std::launch::async);
    EXPECT_EQ(framework.to_string(2), "C++ std::async()  ->  2 / ?  (async | deferred)");

    // The next toggle brings both together again.
    framework.handle_menu_option(4);
    framework.handle_menu_option(4);
    EXPECT_EQ(framework.launch_policy(), async_or_deferred);
    qmp::TextCursor on("7 12");
    framework.load_settings(on);
    EXPECT_TRUE(framework.async_only());
    EXPECT_EQ(framework.launch_policy(), async_or_deferred);
    EXPECT_EQ(on.read_integer(), 12);
}

TEST(AsyncSettings, RestoringFromAConfigurationLeavesTheLaunchPolicyAlone) {
    AsyncParallelizer framework;
    qmp::notation::Object config;
    config.insert_bool("AsyncOnly", false);
    framework.read_config(config);
    EXPECT_FALSE(framework.async_only());
    EXPECT_EQ(framework.launch_policy(), std::launch::async);
}

}  // namespace
