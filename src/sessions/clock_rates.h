// The clocks that a run's times came from, as a validation file tells them.
#pragma once

#include <cstdint>
#include <string>

namespace kelvara {

struct ClockRates {
    std::string name;  // of the performance counter: "TSC", "HPET", ...; empty when unknown
    std::uint64_t counter_frequency = 0;    // of the performance counter, in Hz
    std::uint64_t time_stamp_rate = 0;      // ticks a second of the processor's counter
    std::uint64_t identification_rate = 0;  // processor identifications a second
};

// Takes about an eighth of a second the first time. Not for while worker threads are busy.
ClockRates measure_clock_rates();

}  // namespace kelvara
