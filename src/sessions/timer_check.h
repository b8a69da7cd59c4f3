// Whether a run's times can be believed: three clocks have to tell the same duration.
//
// The times of a report come from the performance counter. It is compared with the system's date, which the
// system keeps by other means and corrects from outside, and with the processor's time-stamp counter, whose
// rate is measured against the performance counter for a moment only. A counter that somebody slows down, or
// that stands still while the machine sleeps, runs away from the date.
#pragma once

#include <chrono>
#include <cstdint>

#include "platform/timers.h"

namespace kelvara {

// One moment on every clock.
struct ClockReading {
    qmp::CounterTimePoint counter;
    std::chrono::system_clock::time_point date;
    std::uint64_t time_stamp = 0;
};

// Reads them when the date has just moved on, so that a coarse date costs no precision: on a system whose
// date moves every 16 ms this takes as long.
ClockReading read_clocks();

// How long a run took by each clock, in seconds.
struct ElapsedTimes {
    double counter = 0.0;
    double date = 0.0;
    double time_stamp = 0.0;  // 0 when the rate of the time-stamp counter is unknown

    // `time_stamp_rate` in ticks a second, 0 when unknown.
    static ElapsedTimes between(const ClockReading& start, const ClockReading& end,
                                std::uint64_t time_stamp_rate);
};

enum class TimerVerdict { passed, failed, unable_to_validate, disabled };

// Shorter runs say nothing: a reading can be as much as 10 ms off when another program gets in between.
constexpr double shortest_validated_run = 1.0;  // seconds
// Of the longer of two durations. Corrections of the date stay below 0.05 %, and the measured rate of the
// time-stamp counter is right to about 0.1 %.
constexpr double timer_tolerance = 0.01;

// failed: counter and date disagree, whatever the reason (a date that was set by hand is one; the run has to
// be repeated). unable_to_validate: the run is too short, or the time-stamp counter alone disagrees, which it
// honestly does where it changes its speed with the processor or was moved to another machine.
TimerVerdict judge_timers(const ElapsedTimes& elapsed);

// "Passed", "Failed", "Unable to Validate", "Disabled due to checkpoint restart".
const char* to_text(TimerVerdict verdict);

}  // namespace kelvara
