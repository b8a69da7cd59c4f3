#include "platform/reference_clocks.h"

#include <cpuid.h>

#include <algorithm>
#include <atomic>
#include <optional>

#include "platform/timers.h"

namespace qmp {
namespace {

// What the measured instructions yield goes here, so that none is left out.
std::atomic<std::uint64_t> sink{0};

// Nothing when a clock fails.
std::optional<std::uint64_t> tsc_rate_on_this_processor(ClockSystem& clocks) {
    __extension__ using Wide = unsigned __int128;
    const std::int64_t frequency = clocks.performance_frequency().value_or(0);
    if (frequency <= 0) return std::nullopt;
    const std::int64_t sixteenth = std::max<std::int64_t>(frequency / 16, 1);

    const std::uint64_t first_stamp = clocks.time_stamp_counter();
    const std::optional<std::int64_t> start = clocks.performance_counter();
    if (!start) return std::nullopt;
    std::int64_t elapsed = 0;
    while (elapsed < sixteenth) {
        const std::optional<std::int64_t> end = clocks.performance_counter();
        if (!end) return std::nullopt;
        elapsed = *end - *start;
    }
    const std::uint64_t stamps = clocks.time_stamp_counter() - first_stamp;
    return static_cast<std::uint64_t>(Wide{stamps} * static_cast<std::uint64_t>(frequency) /
                                      static_cast<std::uint64_t>(elapsed));
}

// Executions per second of what `block` does 10,000 times and returns the sum of.
template <typename Block>
std::uint64_t loop_rate(ClockSystem& clocks, Block block) {
    constexpr std::uint64_t block_iterations = 10'000;
    constexpr double least_seconds = 0.0625;
    const CounterTimePoint start = now(clocks);
    std::uint64_t iterations = 0;
    std::uint64_t sum = 0;
    do {
        sum += block(block_iterations);
        iterations += block_iterations;
    } while (seconds_between(now(clocks), start, clocks) < least_seconds);
    sink.fetch_add(sum, std::memory_order_relaxed);
    return static_cast<std::uint64_t>(static_cast<double>(iterations) /
                                      seconds_between(now(clocks), start, clocks));
}

ReferenceClocks& reference_clocks() {
    static ReferenceClocks clocks(clock_system());
    return clocks;
}

}  // namespace

std::uint64_t ReferenceClocks::measure_tsc_rate(ClockSystem& clocks) {
    if (!clocks.pin_thread_to_lowest_processor()) end_over_clock("Unable to set Affinity Mask.");
    const std::optional<std::uint64_t> rate = tsc_rate_on_this_processor(clocks);
    const bool unpinned = clocks.unpin_thread();
    if (!rate) end_over_clock("Unable to measure clock speed.");
    if (!unpinned) end_over_clock("Unable to set Affinity Mask.");
    return *rate;
}

std::uint64_t ReferenceClocks::measure_rdtsc_read_rate(ClockSystem& clocks) {
    return loop_rate(clocks, [](std::uint64_t iterations) {
        std::uint64_t sum = 0;
        for (std::uint64_t i = 0; i < iterations; ++i) sum += os::time_stamp_counter();
        return sum;
    });
}

std::uint64_t ReferenceClocks::measure_cpuid_loop_rate(ClockSystem& clocks) {
    return loop_rate(clocks, [](std::uint64_t iterations) {
        std::uint64_t sum = 0;
        for (std::uint64_t i = 0; i < iterations; ++i) {
            std::uint32_t eax, ebx, ecx, edx;
            __cpuid_count(1, 0, eax, ebx, ecx, edx);
            sum += std::uint64_t{eax} + ebx + ecx + edx;
        }
        return sum;
    });
}

std::string_view ReferenceClocks::name() {
    if (const auto source = clocks_.performance_counter_source()) return *source;
    const std::int64_t frequency = counter_frequency(clocks_);
    if (frequency == 14'318'180) return "HPET";
    if (frequency == 3'579'545) return "ACPI";
    // A counter made from the time-stamp counter runs at 1/1024 of its rate.
    const double ratio = static_cast<double>(tsc_rate()) / static_cast<double>(frequency);
    return ratio > 1008.0 && ratio < 1040.0 ? "TSC" : "";
}

std::uint64_t tsc_rate() {
    return reference_clocks().tsc_rate();
}

std::string_view reference_clock_name() {
    return reference_clocks().name();
}

std::uint64_t rdtsc_read_rate() {
    return reference_clocks().rdtsc_read_rate();
}

std::uint64_t cpuid_loop_rate() {
    return reference_clocks().cpuid_loop_rate();
}

}  // namespace qmp
