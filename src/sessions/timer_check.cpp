#include "sessions/timer_check.h"

#include <algorithm>
#include <cmath>

#include "platform/os/clock.h"

namespace kelvara {
namespace {

// Also false when one of them is no number.
bool agree(double a, double b) {
    return a > 0.0 && b > 0.0 && std::fabs(a - b) <= timer_tolerance * std::max(a, b);
}

}  // namespace

ClockReading read_clocks() {
    constexpr double longest_wait = 0.1;      // seconds for the date to move on
    constexpr double undisturbed = 0.000'05;  // seconds between the readings of counter and date
    const qmp::CounterTimePoint started = qmp::now();
    const std::chrono::system_clock::time_point first = std::chrono::system_clock::now();
    ClockReading reading;
    for (;;) {
        const qmp::CounterTimePoint before = qmp::now();
        reading.date = std::chrono::system_clock::now();
        reading.counter = qmp::now();
        reading.time_stamp = qmp::os::time_stamp_counter();
        const bool moved = reading.date != first;
        if (moved && qmp::seconds_between(reading.counter, before) <= undisturbed) return reading;
        if (qmp::seconds_between(reading.counter, started) > longest_wait) return reading;
    }
}

ElapsedTimes ElapsedTimes::between(const ClockReading& start, const ClockReading& end,
                                   std::uint64_t time_stamp_rate) {
    ElapsedTimes elapsed;
    elapsed.counter = qmp::seconds_between(end.counter, start.counter);
    elapsed.date = std::chrono::duration<double>(end.date - start.date).count();
    if (time_stamp_rate > 0 && end.time_stamp > start.time_stamp) {
        elapsed.time_stamp =
            static_cast<double>(end.time_stamp - start.time_stamp) / static_cast<double>(time_stamp_rate);
    }
    return elapsed;
}

TimerVerdict judge_timers(const ElapsedTimes& elapsed) {
    // By the clock that saw more time pass: a counter that stands still makes every run a short one. The
    // size counts, since a clock that was set back shows less than nothing.
    const double longest = std::max(std::fabs(elapsed.counter), std::fabs(elapsed.date));
    if (longest < shortest_validated_run) return TimerVerdict::unable_to_validate;
    if (!agree(elapsed.counter, elapsed.date)) return TimerVerdict::failed;
    return agree(elapsed.counter, elapsed.time_stamp) ? TimerVerdict::passed
                                                      : TimerVerdict::unable_to_validate;
}

const char* to_text(TimerVerdict verdict) {
    switch (verdict) {
        case TimerVerdict::passed:
            return "Passed";
        case TimerVerdict::failed:
            return "Failed";
        case TimerVerdict::disabled:
            return "Disabled due to checkpoint restart";
        default:
            return "Unable to Validate";
    }
}

}  // namespace kelvara
