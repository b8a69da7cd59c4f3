#include "platform/timers.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/os/clock.h"
#include "support/clocks.h"
#include "support/console.h"
#include "support/fatal.h"

namespace {

using kelvara_test::FakeClocks;

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

TEST(Timers, ProcessorTimesAreInSeconds) {
    FakeClocks clocks;
    clocks.times = qmp::os::ProcessTimes{25'000'000, 5'000'000};
    const qmp::CpuTimePoint start = qmp::cpu_now(clocks);
    EXPECT_EQ(start.wall.value, 1000);
    EXPECT_DOUBLE_EQ(start.user, 2.5);
    EXPECT_DOUBLE_EQ(start.kernel, 0.5);
    clocks.times = qmp::os::ProcessTimes{35'000'000, 5'000'001};
    clocks.ticks_per_reading = 20'000'000;
    const qmp::CpuSeconds seconds = qmp::cpu_seconds_between(qmp::cpu_now(clocks), start, clocks);
    EXPECT_DOUBLE_EQ(seconds.wall, 2.0);
    EXPECT_DOUBLE_EQ(seconds.user, 1.0);
    EXPECT_NEAR(seconds.kernel, 1e-7, 1e-12);
}

TEST(Timers, DumpShowsThreeTimes) {
    EXPECT_EQ(kelvara_test::printed_by([] {
                  qmp::dump({12.5, 24.25, 0.0000011});
              }),
              "total.wall_time   : 12.500000\n"
              "total.user_time   : 24.250000\n"
              "total.kernel_time : 0.000001\n");
}

TEST(Timers, TellTheCountersFrequency) {
    EXPECT_EQ(qmp::counter_frequency(), qmp::os::performance_frequency().value());
    FakeClocks clocks;
    clocks.frequency = 3'579'545;
    EXPECT_EQ(qmp::counter_frequency(clocks), 3'579'545);
}

#if GTEST_HAS_DEATH_TEST
TEST(TimersDeathTest, EveryFailureEndsTheProgram) {
    const char* const no_counter = "^\nUnable to access performance counter\\.\n$";
    FakeClocks no_readings;
    no_readings.readings_left = 0;
    EXPECT_FATAL(qmp::now(no_readings), no_counter);
    EXPECT_FATAL(qmp::cpu_now(no_readings), no_counter);
    FakeClocks clocks;
    clocks.frequency.reset();
    EXPECT_FATAL(qmp::seconds_between({2}, {1}, clocks), no_counter);
    EXPECT_FATAL(qmp::counter_frequency(clocks), no_counter);
    clocks.frequency = 0;
    EXPECT_FATAL(qmp::counter_frequency(clocks), no_counter);
    FakeClocks no_times;
    no_times.times.reset();
    EXPECT_FATAL(qmp::cpu_now(no_times), "^\nUnable to get CPU Clock\\.\n$");
}
#endif

}  // namespace
