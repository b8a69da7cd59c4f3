#include "platform/timers.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/os/clock.h"

namespace {

TEST(Timers, WallTimeNeverGoesBack) {
    qmp::CounterTimePoint last = qmp::now();
    for (int i = 0; i < 10000; ++i) {
        const qmp::CounterTimePoint next = qmp::now();
        ASSERT_GE(next.value, last.value);
        last = next;
    }
}

TEST(Timers, SecondsFollowTheCountersFrequency) {
    const std::int64_t frequency = qmp::os::performance_frequency().value();
    EXPECT_DOUBLE_EQ(qmp::seconds_between({3 * frequency}, {frequency}), 2.0);
    EXPECT_DOUBLE_EQ(qmp::seconds_between({0}, {frequency / 2}), -0.5);
    EXPECT_EQ(qmp::seconds_between({123456789}, {123456789}), 0.0);
}

TEST(Timers, SleepingCountsAsWallTime) {
    const qmp::CounterTimePoint start = qmp::now();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_GE(qmp::seconds_between(qmp::now(), start), 0.019);
}

TEST(Timers, ProcessorTimeGrowsWithWork) {
    const qmp::CpuTimePoint start = qmp::cpu_now();
    // The system accounts in steps: work until one has been counted.
    qmp::CpuTimePoint end = start;
    while (end.user + end.kernel <= start.user + start.kernel) end = qmp::cpu_now();
    EXPECT_GE(end.user, start.user);
    EXPECT_GE(end.kernel, start.kernel);
    EXPECT_GT(qmp::seconds_between(end.wall, start.wall), 0.0);
}

}  // namespace
