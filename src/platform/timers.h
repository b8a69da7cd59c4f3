// Wall time from the system's performance counter, and the process's accumulated processor time.
//
// Every failure is fatal (a warning and exit code 1): a benchmark with an unreliable clock is worthless.
// Usable from any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/clock_system.h"

namespace qmp {

// One reading of the performance counter.
struct CounterTimePoint {
    std::int64_t value = 0;
};

// One reading of the wall counter and of the process's user and kernel time, in seconds.
struct CpuTimePoint {
    CounterTimePoint wall;
    double user = 0.0;
    double kernel = 0.0;
};

// What passed between two such readings, in seconds.
struct CpuSeconds {
    double wall = 0.0;
    double user = 0.0;
    double kernel = 0.0;
};

CounterTimePoint now(ClockSystem& clocks = clock_system());
double seconds_between(CounterTimePoint end, CounterTimePoint start, ClockSystem& clocks = clock_system());
CpuTimePoint cpu_now(ClockSystem& clocks = clock_system());
CpuSeconds cpu_seconds_between(const CpuTimePoint& end, const CpuTimePoint& start,
                               ClockSystem& clocks = clock_system());

// Ticks of the performance counter per second; more than 0.
std::int64_t counter_frequency(ClockSystem& clocks = clock_system());

// Prints the three times, for a developer.
void dump(const CpuSeconds& seconds);

// How a clock that fails ends the program: the message as a warning, and exit code 1.
[[noreturn]] void end_over_clock(std::string_view message);

}  // namespace qmp
