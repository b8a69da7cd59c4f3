// Processor utilisation of a run.
#pragma once

#include <cstdint>
#include <string>

#include "platform/timers.h"

namespace kelvara {

// Between two readings, on `cores` logical cores. Not measured when no user time was counted.
struct Utilization {
    bool measured = false;
    double user_percent = 0.0;
    double kernel_percent = 0.0;
    std::uint64_t cores = 1;

    static Utilization between(const qmp::CpuTimePoint& start, const qmp::CpuTimePoint& end,
                               std::uint64_t cores);
};

// The two lines of the report.
void print_utilization(const Utilization& utilization);

// The values of the two lines, without their labels: "  187.65 %  +    3.20 % kernel overhead", or
// "Too Fast to Measure".
std::string utilization_text(const Utilization& utilization);
std::string efficiency_text(const Utilization& utilization);

}  // namespace kelvara
