// The hardware behind the performance counter, and rates that a record of measured times shows beside them.
//
// Each rate takes about a sixteenth of a second to measure and is measured once, on the thread that asks
// first; callers ask before or after their worker threads are busy. A failing clock ends the program
// (timers.h).
#pragma once

#include <cstdint>
#include <mutex>
#include <string_view>

#include "platform/clock_system.h"

namespace qmp {

// Ticks of the time-stamp counter per second, rounded down. Measured on the lowest processor that the process
// may use; the thread may use all of the process's processors afterwards.
std::uint64_t tsc_rate();
// "HPET", "ACPI", "TSC" or empty. What the system says of its counter comes first; a system that says nothing
// gives the counter the frequency of its source.
std::string_view reference_clock_name();
// Time-stamp counter reads per second.
std::uint64_t rdtsc_read_rate();
// Executions of the processor-identification instruction per second.
std::uint64_t cpuid_loop_rate();

// The same for given clocks. Any number of threads may use one.
class ReferenceClocks {
  public:
    explicit ReferenceClocks(ClockSystem& clocks) : clocks_(clocks) {}

    std::uint64_t tsc_rate() { return tsc_rate_.once(clocks_); }
    std::string_view name();
    std::uint64_t rdtsc_read_rate() { return rdtsc_read_rate_.once(clocks_); }
    std::uint64_t cpuid_loop_rate() { return cpuid_loop_rate_.once(clocks_); }

  private:
    class Rate {
      public:
        explicit Rate(std::uint64_t (*measure)(ClockSystem& clocks)) : measure_(measure) {}
        std::uint64_t once(ClockSystem& clocks) {
            std::call_once(measured_, [&] { value_ = measure_(clocks); });
            return value_;
        }

      private:
        std::uint64_t (*measure_)(ClockSystem& clocks);
        std::once_flag measured_;
        std::uint64_t value_ = 0;
    };

    static std::uint64_t measure_tsc_rate(ClockSystem& clocks);
    static std::uint64_t measure_rdtsc_read_rate(ClockSystem& clocks);
    static std::uint64_t measure_cpuid_loop_rate(ClockSystem& clocks);

    ClockSystem& clocks_;
    Rate tsc_rate_{measure_tsc_rate};
    Rate rdtsc_read_rate_{measure_rdtsc_read_rate};
    Rate cpuid_loop_rate_{measure_cpuid_loop_rate};
};

}  // namespace qmp
