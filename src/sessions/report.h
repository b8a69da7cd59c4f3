// The report at the end of a session.
#pragma once

#include <string>

#include "platform/timers.h"
#include "sessions/session_record.h"

namespace kelvara {

// Start and end, computation and wall time, processor utilisation, the last digits, the result's hash and
// the files.
void print_report(const SessionRecord& record);

// Processor utilisation between two readings, on `cores` logical cores. "Too Fast to Measure" when no user
// time was counted.
struct Utilization {
    bool measured = false;
    double user_percent = 0.0;
    double kernel_percent = 0.0;
    std::uint64_t cores = 1;

    static Utilization between(const qmp::CpuTimePoint& start, const qmp::CpuTimePoint& end,
                               std::uint64_t cores);
};
void print_utilization(const Utilization& utilization);

// The last digits in lines of 50, in groups of 10, each line followed by the position of its last digit.
// `digits` end at position `last_position`.
void print_last_digits(const std::string& digits, std::uint64_t last_position);

}  // namespace kelvara
