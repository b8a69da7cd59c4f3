// Clocks of a test's own making in place of the real ones.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/clock_system.h"

namespace kelvara_test {

struct FakeClocks : qmp::ClockSystem {
    std::optional<std::int64_t> frequency = 10'000'000;
    std::optional<std::string_view> source;
    // The performance counter advances by this with each reading, the time-stamp counter by `stamps_per_tick`
    // for each tick of it.
    std::int64_t ticks_per_reading = 1000;
    double stamps_per_tick = 300.0;
    // Readings of the counter that succeed before it fails.
    std::uint64_t readings_left = ~std::uint64_t{0};
    std::optional<qmp::os::ProcessTimes> times = qmp::os::ProcessTimes{};
    bool pins = true;
    bool unpins = true;

    std::int64_t counter = 0;
    std::uint64_t readings = 0;
    bool pinned = false;
    std::uint64_t pin_calls = 0;

    std::optional<std::int64_t> performance_counter() override {
        if (readings == readings_left) return std::nullopt;
        ++readings;
        return counter += ticks_per_reading;
    }
    std::optional<std::int64_t> performance_frequency() override { return frequency; }
    std::optional<std::string_view> performance_counter_source() override { return source; }
    std::optional<qmp::os::ProcessTimes> process_times() override { return times; }
    std::uint64_t time_stamp_counter() override {
        return static_cast<std::uint64_t>(static_cast<double>(counter) * stamps_per_tick);
    }
    bool pin_thread_to_lowest_processor() override {
        ++pin_calls;
        return pinned = pins;
    }
    bool unpin_thread() override {
        pinned = false;
        return unpins;
    }
};

}  // namespace kelvara_test
