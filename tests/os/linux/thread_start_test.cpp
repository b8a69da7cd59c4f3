#include "platform/os/thread_start.h"

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

#include "support/sanitized.h"
#include "support/linux/stack_overflow.h"

namespace qmp::os {
namespace {

using kelvara_test::sanitized;

bool has_alternate_stack() {
    stack_t present{};
    return sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE) == 0;
}

void overflow_on_a_thread(bool prepared) {
    std::thread([prepared] {
        if (prepared) prepare_thread_for_crashes();
        kelvara_test::use_up_the_stack(1);
    }).join();
}

TEST(ThreadStartDeathTest, AnOverflowOfAPreparedThreadsStackReachesTheHandler) {
    if (sanitized) GTEST_SKIP() << "a sanitizer reports crashes itself";
    EXPECT_HANDLED_OVERFLOW(overflow_on_a_thread(true));
}

// What the preparation is good for.
TEST(ThreadStartDeathTest, AnOverflowOfAnotherThreadsStackDoesNot) {
    if (sanitized) GTEST_SKIP() << "a sanitizer reports crashes itself";
    EXPECT_EXIT(
        {
            kelvara_test::end_at_the_crash_handler();
            overflow_on_a_thread(false);
        },
        testing::KilledBySignal(SIGSEGV), "");
}

TEST(ThreadStart, GivesAThreadItsStackOnceAndKeepsOneThatIsThere) {
    if (sanitized) GTEST_SKIP() << "a sanitizer gives every thread a stack";
    std::thread([] {
        EXPECT_FALSE(has_alternate_stack());
        prepare_thread_for_crashes();
        EXPECT_TRUE(has_alternate_stack());
        stack_t first{};
        sigaltstack(nullptr, &first);
        prepare_thread_for_crashes();
        stack_t second{};
        sigaltstack(nullptr, &second);
        EXPECT_EQ(first.ss_sp, second.ss_sp);
    }).join();

    std::thread([] {
        alignas(16) static char own[64 * 1024];
        stack_t stack{};
        stack.ss_sp = own;
        stack.ss_size = sizeof own;
        ASSERT_EQ(sigaltstack(&stack, nullptr), 0);
        prepare_thread_for_crashes();
        stack_t present{};
        sigaltstack(nullptr, &present);
        EXPECT_EQ(present.ss_sp, static_cast<void*>(own));
        stack_t none{};
        none.ss_flags = SS_DISABLE;
        sigaltstack(&none, nullptr);
    }).join();
}

}  // namespace
}  // namespace qmp::os
