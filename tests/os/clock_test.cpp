#include "platform/os/clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <thread>

namespace qmp::os {
namespace {

TEST(Clock, TheCounterAdvancesWithItsFrequency) {
    const auto frequency = performance_frequency();
    ASSERT_TRUE(frequency.has_value());
    EXPECT_GE(*frequency, 1'000'000);
    const auto start = performance_counter();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const auto end = performance_counter();
    ASSERT_TRUE(start && end);
    // At least the time slept; a little less on systems that round the sleep.
    EXPECT_GE(static_cast<double>(*end - *start) / static_cast<double>(*frequency), 0.015);
}

TEST(Clock, ProcessorTimeGrowsWithWork) {
    const auto start = process_times();
    ASSERT_TRUE(start.has_value());
    // Both systems count in steps of up to some sixteen milliseconds.
    volatile std::uint64_t sink = 0;
    std::optional<ProcessTimes> end = start;
    for (int round = 0; round < 1'000'000 && end->user + end->kernel == start->user + start->kernel;
         ++round) {
        for (int i = 0; i < 100'000; ++i) sink = sink + 1;
        end = process_times();
        ASSERT_TRUE(end.has_value());
    }
    EXPECT_GT(end->user + end->kernel, start->user + start->kernel);
    EXPECT_GE(end->user, start->user);
    EXPECT_GE(end->kernel, start->kernel);
}

TEST(Clock, LocalTimeAgreesWithTheLibrary) {
    // The second can change between the two readings.
    for (int attempt = 0; attempt < 5; ++attempt) {
        const std::time_t before = std::time(nullptr);
        const LocalTime time = local_time();
        if (std::time(nullptr) != before) continue;
        const std::tm expected = *std::localtime(&before);
        EXPECT_EQ(time.year, expected.tm_year + 1900);
        EXPECT_EQ(time.month, expected.tm_mon + 1);
        EXPECT_EQ(time.day, expected.tm_mday);
        EXPECT_EQ(time.day_of_week, expected.tm_wday);
        EXPECT_EQ(time.hour, expected.tm_hour);
        EXPECT_EQ(time.minute, expected.tm_min);
        EXPECT_EQ(time.second, expected.tm_sec);
        EXPECT_GE(time.millisecond, 0);
        EXPECT_LT(time.millisecond, 1000);
        return;
    }
    FAIL() << "the clock stood on no second long enough";
}

TEST(Clock, TheTimeStampCounterAdvances) {
    const std::uint64_t start = time_stamp_counter();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_GT(time_stamp_counter(), start);
}

}  // namespace
}  // namespace qmp::os
