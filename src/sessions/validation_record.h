// Everything that a validation file says, before it is text.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "sessions/clock_rates.h"
#include "sessions/spot_check.h"
#include "sessions/timer_check.h"
#include "sessions/utilization.h"

namespace kelvara {

// What a computation on disk did there.
struct DiskUse {
    std::uint64_t logical_peak = 0;  // bytes
    std::uint64_t bytes_read = 0;
    std::uint64_t bytes_written = 0;
    std::string configuration;  // the swap configuration's own lines, each with CR LF
};

struct ValidationRecord {
    std::string name;  // the file's name begins with it: "Pi"

    std::string program;  // "0.7.3 Build 9474"
    std::string tuning;   // "11-BD1 ~ Vessa"
    std::string user;
    // The lines of the machine: operating system, processors, motherboard, memory. Each with CR LF, the
    // last one empty.
    std::string system;

    std::string constant;
    std::string algorithm;
    std::uint64_t decimal_digits = 0;
    std::uint64_t hexadecimal_digits = 0;  // 0: disabled
    std::string threading;
    std::uint64_t working_memory = 0;  // bytes
    std::uint64_t total_memory = 0;
    std::optional<DiskUse> disk;  // in Swap Mode

    std::string start_date;
    std::string end_date;
    double computation_seconds = 0.0;
    double wall_seconds = 0.0;
    Utilization utilization;

    std::string last_digits;  // decimal, ending at decimal_digits
    std::array<std::uint64_t, 16> decimal_counts{};
    std::array<std::uint64_t, 16> hexadecimal_counts{};
    std::uint64_t hash = 0;

    SpotCheckResult spot_check;
    TimerVerdict timer_check = TimerVerdict::unable_to_validate;
    ClockRates clocks;
    bool debugger_present = false;
    bool contiguous = true;  // from start to end without a restart
    std::uint64_t recovered_errors = 0;

    std::string event_log;
};

}  // namespace kelvara
