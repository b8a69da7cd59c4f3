// What a session knows of its run: filled step by step, printed by the report.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/system_information.h"
#include "platform/timers.h"
#include "radix/output_driver.h"
#include "sessions/event_log.h"
#include "sessions/spot_check.h"
#include "sessions/timer_check.h"

namespace kelvara {

// The digits of one radix of the run, in one file or in several in a folder of their own.
struct WrittenFile {
    std::string path;  // of the only file, or of the first one
    bool complete = true;
    std::uint64_t files = 1;
};

struct SessionRecord {
    std::string start_time;
    std::string end_time;
    qmp::CpuTimePoint started;    // before the reservation
    qmp::CpuTimePoint computing;  // "Begin Computation"
    qmp::CpuTimePoint computed;   // the constant's value is there
    qmp::CpuTimePoint ended;      // the digits are written and verified
    ClockReading clocks_started;  // every clock, together with `started`
    ClockReading clocks_ended;

    std::uint64_t working_memory = 0;       // bytes reserved
    std::uint64_t working_memory_peak = 0;  // bytes of it that the run came to use
    std::uint64_t twiddle_memory = 0;
    std::string working_memory_text;  // as the allocator describes the block
    std::string twiddle_memory_text;
    double reserving_seconds = 0.0;
    double twiddle_seconds = 0.0;  // with the reservation of the tables' memory

    qmp::DigitOutput decimal;
    qmp::DigitOutput hexadecimal;  // digits = 0 when disabled
    std::vector<WrittenFile> files;
    SpotCheckResult spot_check;  // of the decimal digits
    SystemInformation system;
    EventLog log;

    double total_seconds() const { return qmp::seconds_between(ended.wall, computing.wall); }
    double wall_seconds() const { return qmp::seconds_between(ended.wall, started.wall); }
};

}  // namespace kelvara
