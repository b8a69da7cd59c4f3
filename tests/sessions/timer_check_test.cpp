#include "sessions/timer_check.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/os/clock.h"

namespace kelvara {
namespace {

constexpr auto passed = TimerVerdict::passed;
constexpr auto failed = TimerVerdict::failed;
constexpr auto unable = TimerVerdict::unable_to_validate;

TEST(TimerCheck, ClocksThatAgreePass) {
    EXPECT_EQ(judge_timers({100.0, 100.0, 100.0}), passed);
    EXPECT_EQ(judge_timers({100.0, 100.9, 99.1}), passed);
    EXPECT_EQ(judge_timers({1.0, 1.0, 1.0}), passed);
    EXPECT_EQ(judge_timers({1e7, 1.005e7, 1e7}), passed);
}

TEST(TimerCheck, ACounterThatRunsAwayFromTheDateFails) {
    EXPECT_EQ(judge_timers({100.0, 102.0, 100.0}), failed);
    EXPECT_EQ(judge_timers({100.0, 98.0, 100.0}), failed);
    EXPECT_EQ(judge_timers({50.0, 100.0, 50.0}), failed);
    // The date was set back during the run.
    EXPECT_EQ(judge_timers({100.0, -3500.0, 100.0}), failed);
    EXPECT_EQ(judge_timers({-100.0, 100.0, 100.0}), failed);
    // Only the date tells that this run was no short one.
    EXPECT_EQ(judge_timers({0.5, 60.0, 0.5}), failed);
    EXPECT_EQ(judge_timers({0.0, 60.0, 0.0}), failed);
    EXPECT_EQ(judge_timers({100.0, std::numeric_limits<double>::quiet_NaN(), 100.0}), failed);
}

TEST(TimerCheck, AnOddTimeStampCounterLeavesTheQuestionOpen) {
    EXPECT_EQ(judge_timers({100.0, 100.0, 0.0}), unable);
    EXPECT_EQ(judge_timers({100.0, 100.0, 97.0}), unable);
    EXPECT_EQ(judge_timers({100.0, 100.0, 103.0}), unable);
}

TEST(TimerCheck, ShortRunsCannotBeValidated) {
    EXPECT_EQ(judge_timers({0.99, 0.99, 0.99}), unable);
    EXPECT_EQ(judge_timers({0.1, 0.12, 0.1}), unable);
    EXPECT_EQ(judge_timers({}), unable);
}

TEST(TimerCheck, Texts) {
    EXPECT_STREQ(to_text(passed), "Passed");
    EXPECT_STREQ(to_text(failed), "Failed");
    EXPECT_STREQ(to_text(unable), "Unable to Validate");
    EXPECT_STREQ(to_text(TimerVerdict::disabled), "Disabled due to checkpoint restart");
}

TEST(ElapsedTimes, AreDifferencesOfReadings) {
    const std::int64_t frequency = qmp::os::performance_frequency().value();
    ClockReading start, end;
    start.counter.value = 5 * frequency;
    end.counter.value = 7 * frequency;
    start.date = std::chrono::system_clock::time_point(std::chrono::hours(400'000));
    end.date = start.date + std::chrono::milliseconds(2500);
    start.time_stamp = 1'000'000'000;
    end.time_stamp = 7'000'000'000;
    const ElapsedTimes elapsed = ElapsedTimes::between(start, end, 2'000'000'000);
    EXPECT_DOUBLE_EQ(elapsed.counter, 2.0);
    EXPECT_DOUBLE_EQ(elapsed.date, 2.5);
    EXPECT_DOUBLE_EQ(elapsed.time_stamp, 3.0);
    EXPECT_EQ(ElapsedTimes::between(start, end, 0).time_stamp, 0.0);
    // A counter that began anew.
    EXPECT_EQ(ElapsedTimes::between(end, start, 2'000'000'000).time_stamp, 0.0);
}

TEST(ClockReading, EveryClockMovesOn) {
    const ClockReading start = read_clocks();
    const ClockReading end = read_clocks();
    EXPECT_GT(end.counter.value, start.counter.value);
    EXPECT_GT(end.date, start.date);
    EXPECT_GT(end.time_stamp, start.time_stamp);
}

}  // namespace
}  // namespace kelvara
