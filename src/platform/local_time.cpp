#include "platform/local_time.h"

namespace kelvara {
namespace {

std::string padded(int value, std::size_t width, char fill) {
    std::string text = std::to_string(value);
    return text.size() < width ? std::string(width - text.size(), fill) + text : text;
}

}  // namespace

std::string local_time_text(const qmp::os::LocalTime& time) {
    static constexpr const char* weekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return std::string(weekdays[time.day_of_week]) + " " + months[time.month - 1] + " " +
           padded(time.day, 2, ' ') + " " + padded(time.hour, 2, '0') + ":" + padded(time.minute, 2, '0') +
           ":" + padded(time.second, 2, '0') + " " + padded(time.year, 4, '0');
}

std::string file_name_time(const qmp::os::LocalTime& time) {
    return padded(time.year, 4, '0') + padded(time.month, 2, '0') + padded(time.day, 2, '0') + "-" +
           padded(time.hour, 2, '0') + padded(time.minute, 2, '0') + padded(time.second, 2, '0');
}

}  // namespace kelvara
