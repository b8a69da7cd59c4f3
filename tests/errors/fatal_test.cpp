#include "errors/fatal.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "errors/exception.h"
#include "support/fatal.h"

#if GTEST_HAS_DEATH_TEST
namespace {

const char* const advice =
    "If this error shows up consistantly with the current options,\n"
    "please report it as a bug.\n\n"
    "If this error comes and goes with the current options,\n"
    "please check your hardware for reliability issues.\n"
    "Are you overclocking\\?\n\n"
    "Terminating Program...\n";

TEST(AssertionFailureDeathTest, PrintsTheThreeTextsAndReadsAddressZero) {
    EXPECT_CRASH(
        qmp::assertion_failure("a < b", " in f()", "a is 5"),
        std::string("\n\nFATAL ERROR: Assertion Failure\n\na < b in f\\(\\)\n\na is 5\n\n\n") + advice);
}

TEST(AssertionFailureDeathTest, LeavesOutEmptyTexts) {
    EXPECT_CRASH(qmp::assertion_failure("", "", ""),
                 std::string("\n\nFATAL ERROR: Assertion Failure\n\n\n\n\n") + advice);
    EXPECT_CRASH(qmp::assertion_failure("", "", "detail"),
                 std::string("\n\nFATAL ERROR: Assertion Failure\n\n\n\ndetail\n\n\n") + advice);
}

TEST(AssertionFailureDeathTest, InvalidFunctionParameters) {
    EXPECT_CRASH(qmp::invalid_function_parameters("f()"),
                 "FATAL ERROR: Assertion Failure\n\nInvalid Function Parameters: f\\(\\)\n\n\n");
}

template <typename Thrown>
void throw_on_a_child_thread(Thrown thrown) {
    std::thread([&] {
        try {
            throw thrown;
        } catch (...) {
            qmp::end_after_child_thread_exception();
        }
    }).join();
}

TEST(ChildThreadGuardDeathTest, PrintsTheProgramsOwnException) {
    EXPECT_FATAL(throw_on_a_child_thread(qmp::ArithmeticException("g()", "Bad sum.")),
                 "Exception Encountered: ArithmeticException\n\nIn Function: g\\(\\)\n\nBad sum.\n\n"
                 "\nFATAL ERROR: Unhandled exception in child thread.\n");
}

TEST(ChildThreadGuardDeathTest, PrintsAStandardException) {
    EXPECT_FATAL(throw_on_a_child_thread(std::runtime_error("out of luck")),
                 "\nout of luck\n\nFATAL ERROR: Unhandled exception in child thread.\n");
}

TEST(ChildThreadGuardDeathTest, PrintsAThrownText) {
    EXPECT_FATAL(throw_on_a_child_thread<const char*>("Memory buffer has been overrun."),
                 "\nMemory buffer has been overrun.\n\nFATAL ERROR: Unhandled exception in child thread.\n");
}

TEST(ChildThreadGuardDeathTest, PrintsTheLineForAnythingElse) {
    EXPECT_FATAL(throw_on_a_child_thread(42), "^\nFATAL ERROR: Unhandled exception in child thread.\n");
}

TEST(ChildThreadGuardDeathTest, ThreadsThatFailTogetherReportOnce) {
    EXPECT_FATAL(
        {
            std::thread other[8];
            for (std::thread& thread : other) {
                thread = std::thread([] { throw_on_a_child_thread(qmp::ArithmeticException("g()", "Bad sum.")); });
            }
            for (std::thread& thread : other) thread.join();
        },
        "^\nException Encountered: ArithmeticException\n\nIn Function: g\\(\\)\n\nBad sum.\n\n"
        "\nFATAL ERROR: Unhandled exception in child thread.\n$");
}

}  // namespace
#endif
