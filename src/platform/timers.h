// Wall time from the system's performance counter, and the process's accumulated processor time.
//
// Every failure is fatal (a warning and exit code 1): a benchmark with an unreliable clock is worthless.
#pragma once

#include <cstdint>

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

CounterTimePoint now();
double seconds_between(CounterTimePoint end, CounterTimePoint start);
CpuTimePoint cpu_now();

}  // namespace qmp
