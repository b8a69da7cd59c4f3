#include "platform/os/clock.h"

#include <sys/resource.h>
#include <time.h>

#include "platform/os/linux/clock_source.h"

namespace qmp::os {
namespace {

std::uint64_t to_hundred_nanoseconds(const timeval& time) {
    return static_cast<std::uint64_t>(time.tv_sec) * 10'000'000 +
           static_cast<std::uint64_t>(time.tv_usec) * 10;
}

}  // namespace

std::optional<std::int64_t> performance_counter() {
    timespec time;
    if (clock_gettime(CLOCK_MONOTONIC, &time) != 0) return std::nullopt;
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

std::optional<std::int64_t> performance_frequency() {
    return 1'000'000'000;
}

std::optional<std::string_view> performance_counter_source() {
    return clock_source_in("/sys/devices/system/clocksource/clocksource0/current_clocksource");
}

std::optional<ProcessTimes> process_times() {
    rusage usage;
    if (getrusage(RUSAGE_SELF, &usage) != 0) return std::nullopt;
    return ProcessTimes{to_hundred_nanoseconds(usage.ru_utime), to_hundred_nanoseconds(usage.ru_stime)};
}

LocalTime local_time() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm fields{};
    localtime_r(&now.tv_sec, &fields);
    LocalTime result;
    result.year = fields.tm_year + 1900;
    result.month = fields.tm_mon + 1;
    result.day = fields.tm_mday;
    result.day_of_week = fields.tm_wday;
    result.hour = fields.tm_hour;
    result.minute = fields.tm_min;
    // A leap second would break a two-digit, sixty-second format.
    result.second = fields.tm_sec < 60 ? fields.tm_sec : 59;
    result.millisecond = static_cast<int>(now.tv_nsec / 1'000'000);
    return result;
}

}  // namespace qmp::os
