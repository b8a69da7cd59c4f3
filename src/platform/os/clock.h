// Clocks: the performance counter, the process's processor time, the local date, the time-stamp counter.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qmp::os {

// Readings of the system's monotonic high-resolution counter and its ticks per second; nothing on
// failure.
std::optional<std::int64_t> performance_counter();
std::optional<std::int64_t> performance_frequency();

// What the performance counter is made from, where the system says so: "TSC", "HPET", "ACPI", or an empty
// text for anything else. Nothing where only the counter's frequency tells.
std::optional<std::string_view> performance_counter_source();

// Processor time of all threads of the process so far, in units of 100 ns.
struct ProcessTimes {
    std::uint64_t user = 0;
    std::uint64_t kernel = 0;
};
std::optional<ProcessTimes> process_times();

struct LocalTime {
    int year = 0;
    int month = 0;        // 1 to 12
    int day = 0;          // 1 to 31
    int day_of_week = 0;  // 0 is Sunday
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};
LocalTime local_time();

// The processor's own counter (RDTSC), not serialised against other instructions.
inline std::uint64_t time_stamp_counter() {
    return __builtin_ia32_rdtsc();
}

}  // namespace qmp::os
