// A system that grants only a few threads: every call of the frameworks ends in a clean way.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "platform/parallel/async_parallelizer.h"
#include "platform/parallel/framework_variants.h"
#include "platform/parallel/run_on_threads.h"
#include "platform/parallel/spawn_parallelizer.h"
#include "support/fatal.h"
#include "support/sanitized.h"

namespace {

using kelvara_test::CountingAction;
using kelvara_test::sanitized;

// Room for the stacks of a few threads more than the process has.
void leave_room_for_few_threads() {
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const std::uint64_t bytes =
        pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) + std::uint64_t{60} * 1024 * 1024;
    const rlimit limit{bytes, bytes};
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(99);
}

// Holds its thread long enough for the others to be asked for.
class SlowAction : public CountingAction {
  public:
    using CountingAction::CountingAction;
    void run(std::uint64_t index) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        CountingAction::run(index);
    }
};

constexpr std::uint64_t many_tasks = 64;
constexpr int system_error = 3;
constexpr int all_ran = 4;

template <typename Call>
[[noreturn]] void end_with_outcome_of(Call call) {
    kelvara_test::output_to_error();
    leave_room_for_few_threads();
    SlowAction action(many_tasks);
    try {
        call(action);
    } catch (const std::system_error&) {
        _exit(system_error);
    }
    _exit(action.exactly_once(0, many_tasks) ? all_ran : 1);
}

TEST(ThreadLimitDeathTest, AsynchronousCallsReportIt) {
    if (sanitized) GTEST_SKIP() << "a sanitizer needs the address space";
    EXPECT_EXIT(end_with_outcome_of([](SlowAction& action) {
                    qmp::AsyncParallelizer().run_in_parallel(action, 0, many_tasks);
                }),
                testing::ExitedWithCode(system_error), "");
}

TEST(ThreadLimitDeathTest, AsynchronousCallsThatMayBeDeferredAre) {
    if (sanitized) GTEST_SKIP() << "a sanitizer needs the address space";
    EXPECT_EXIT(end_with_outcome_of([](SlowAction& action) {
                    qmp::AsyncParallelizer framework;
                    framework.handle_menu_option(4);
                    framework.run_in_parallel(action, 0, many_tasks);
                }),
                testing::ExitedWithCode(all_ran), "");
}

// A new thread that is granted no further one ends the program, the calling thread propagates: which of them
// comes first is open.
TEST(ThreadLimitDeathTest, ThreadSpawnEndsWithoutACrash) {
    if (sanitized) GTEST_SKIP() << "a sanitizer needs the address space";
    EXPECT_EXIT(
        end_with_outcome_of(
            [](SlowAction& action) { qmp::SpawnParallelizer().run_in_parallel(action, 0, many_tasks); }),
        [](int status) {
            return WIFEXITED(status) && (WEXITSTATUS(status) == system_error || WEXITSTATUS(status) == 1);
        },
        "");
}

TEST(ThreadLimitDeathTest, ThePushPoolMakesDoWithWhatItGets) {
    if (sanitized) GTEST_SKIP() << "a sanitizer needs the address space";
    EXPECT_EXIT(end_with_outcome_of([](SlowAction& action) {
                    qmp::PushPoolParallelizer().run_in_parallel(action, 0, many_tasks);
                }),
                testing::ExitedWithCode(all_ran), "");
}

TEST(ThreadLimitDeathTest, ThreadsOfTasksReportIt) {
    if (sanitized) GTEST_SKIP() << "a sanitizer needs the address space";
    EXPECT_EXIT(end_with_outcome_of([](SlowAction& action) { qmp::run_on_threads(action, 0, many_tasks); }),
                testing::ExitedWithCode(system_error), "");
}

}  // namespace
