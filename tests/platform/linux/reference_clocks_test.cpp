// On which processor the time-stamp counter is measured, in processes that have only some of them.
#include "platform/reference_clocks.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace {

std::vector<int> allowed_processors() {
    cpu_set_t set;
    CPU_ZERO(&set);
    EXPECT_EQ(sched_getaffinity(0, sizeof set, &set), 0);
    std::vector<int> list;
    for (int i = 0; i < CPU_SETSIZE; ++i) {
        if (CPU_ISSET(i, &set)) list.push_back(i);
    }
    return list;
}

struct WatchingClocks : qmp::ClockSystem {
    int expected = 0;
    bool always_there = true;
    std::uint64_t readings = 0;
    std::optional<std::int64_t> performance_counter() override {
        ++readings;
        always_there &= sched_getcpu() == expected;
        return qmp::ClockSystem::performance_counter();
    }
};

// Run by the test below as well, in processes that have fewer processors.
TEST(TscRateOfAProcess, IsMeasuredOnTheLowestProcessor) {
    const std::vector<int> before = allowed_processors();
    ASSERT_FALSE(before.empty());
    WatchingClocks clocks;
    clocks.expected = before.front();
    EXPECT_GT(qmp::ReferenceClocks(clocks).tsc_rate(), 0u);
    EXPECT_GT(clocks.readings, 2u);
    EXPECT_TRUE(clocks.always_there);
    EXPECT_EQ(allowed_processors(), before);
}

// The exit code of that test in a process that may use these processors only.
int run_on(const std::vector<int>& processors) {
    const pid_t child = fork();
    if (child == 0) {
        cpu_set_t set;
        CPU_ZERO(&set);
        for (const int processor : processors) CPU_SET(processor, &set);
        if (sched_setaffinity(0, sizeof set, &set) != 0) _exit(100);
        execl("/proc/self/exe", "tests", "--gtest_filter=TscRateOfAProcess.*", static_cast<char*>(nullptr));
        _exit(101);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(TscRate, IsMeasuredOnTheLowestProcessorOfTheProcess) {
    const std::vector<int> all = allowed_processors();
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(run_on({all.back()}), 0);
    if (all.size() > 2) {
        EXPECT_EQ(run_on({all[1], all[2]}), 0);
    }
}

}  // namespace
