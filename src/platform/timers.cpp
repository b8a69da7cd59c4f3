#include "platform/timers.h"

#include <optional>

#include "console/console.h"
#include "platform/os/clock.h"

namespace qmp {
namespace {

[[noreturn]] void fail(const char* message) {
    console::print_warning(message);
    console::terminate(1);
}

std::int64_t counter_frequency() {
    // Fixed while the system runs.
    static const std::int64_t frequency = os::performance_frequency().value_or(0);
    if (frequency <= 0) fail("Unable to access performance counter.");
    return frequency;
}

}  // namespace

CounterTimePoint now() {
    const std::optional<std::int64_t> counter = os::performance_counter();
    if (!counter) fail("Unable to access performance counter.");
    return {*counter};
}

double seconds_between(CounterTimePoint end, CounterTimePoint start) {
    return static_cast<double>(end.value - start.value) / static_cast<double>(counter_frequency());
}

CpuTimePoint cpu_now() {
    constexpr double seconds_per_unit = 1e-7;
    CpuTimePoint point;
    point.wall = now();
    const std::optional<os::ProcessTimes> times = os::process_times();
    if (!times) fail("Unable to get CPU Clock.");
    point.user = static_cast<double>(times->user) * seconds_per_unit;
    point.kernel = static_cast<double>(times->kernel) * seconds_per_unit;
    return point;
}

}  // namespace qmp
