#include "platform/os/clock.h"

#include <windows.h>

namespace qmp::os {
namespace {

std::uint64_t to_integer(const FILETIME& time) {
    return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

}  // namespace

std::optional<std::int64_t> performance_counter() {
    LARGE_INTEGER value;
    if (!QueryPerformanceCounter(&value)) return std::nullopt;
    return value.QuadPart;
}

std::optional<std::int64_t> performance_frequency() {
    LARGE_INTEGER value;
    if (!QueryPerformanceFrequency(&value) || value.QuadPart <= 0) return std::nullopt;
    return value.QuadPart;
}

std::optional<std::string_view> performance_counter_source() {
    return std::nullopt;
}

std::optional<ProcessTimes> process_times() {
    FILETIME created, exited, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user)) return std::nullopt;
    return ProcessTimes{to_integer(user), to_integer(kernel)};
}

LocalTime local_time() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    LocalTime result;
    result.year = now.wYear;
    result.month = now.wMonth;
    result.day = now.wDay;
    result.day_of_week = now.wDayOfWeek;
    result.hour = now.wHour;
    result.minute = now.wMinute;
    result.second = now.wSecond;
    result.millisecond = now.wMilliseconds;
    return result;
}

}  // namespace qmp::os
