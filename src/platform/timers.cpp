#include "platform/timers.h"

#include <optional>
#include <string>

#include "console/console.h"
#include "console/format.h"

namespace qmp {

CounterTimePoint now(ClockSystem& clocks) {
    const std::optional<std::int64_t> counter = clocks.performance_counter();
    if (!counter) end_over_clock("Unable to access performance counter.");
    return {*counter};
}

double seconds_between(CounterTimePoint end, CounterTimePoint start, ClockSystem& clocks) {
    return static_cast<double>(end.value - start.value) / static_cast<double>(counter_frequency(clocks));
}

CpuTimePoint cpu_now(ClockSystem& clocks) {
    constexpr double seconds_per_unit = 1e-7;
    CpuTimePoint point;
    point.wall = now(clocks);
    const std::optional<os::ProcessTimes> times = clocks.process_times();
    if (!times) end_over_clock("Unable to get CPU Clock.");
    point.user = static_cast<double>(times->user) * seconds_per_unit;
    point.kernel = static_cast<double>(times->kernel) * seconds_per_unit;
    return point;
}

CpuSeconds cpu_seconds_between(const CpuTimePoint& end, const CpuTimePoint& start, ClockSystem& clocks) {
    return {seconds_between(end.wall, start.wall, clocks), end.user - start.user, end.kernel - start.kernel};
}

std::int64_t counter_frequency(ClockSystem& clocks) {
    const std::int64_t frequency = clocks.performance_frequency().value_or(0);
    if (frequency <= 0) end_over_clock("Unable to access performance counter.");
    return frequency;
}

void dump(const CpuSeconds& seconds) {
    constexpr int decimals = 6;
    console::println("total.wall_time   : " + console::format_fixed(seconds.wall, decimals));
    console::println("total.user_time   : " + console::format_fixed(seconds.user, decimals));
    console::println("total.kernel_time : " + console::format_fixed(seconds.kernel, decimals));
}

void end_over_clock(std::string_view message) {
    console::print_warning(message);
    console::terminate(1);
}

}  // namespace qmp
