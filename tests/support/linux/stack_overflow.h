// A crash by running out of stack, and whether the crash handler saw it. For the systems that have death
// tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/os/crash.h"

#if GTEST_HAS_DEATH_TEST
namespace kelvara_test {

// Never comes back. The depth is compared so that the compiler sees an end.
inline int use_up_the_stack(int depth) {
    volatile char room[1024];  // less than a guard page: none may be jumped over
    room[0] = 1;
    return depth < 0 ? 0 : use_up_the_stack(depth == 1'000'000'000 ? 1 : depth + 1) + room[0];
}

constexpr int crash_was_handled = 7;

// From now on a crash ends the process with that exit code.
inline void end_at_the_crash_handler() {
    qmp::os::install_crash_handler([](const qmp::os::CrashContext*) { std::_Exit(crash_was_handled); });
}

}  // namespace kelvara_test

// The statement runs out of stack on some thread, and the crash handler gets to know.
#define EXPECT_HANDLED_OVERFLOW(statement)            \
    EXPECT_EXIT(                                      \
        {                                             \
            kelvara_test::end_at_the_crash_handler(); \
            statement;                                \
        },                                            \
        testing::ExitedWithCode(kelvara_test::crash_was_handled), "")
#endif
