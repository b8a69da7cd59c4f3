#include "sessions/event_log.h"

#include "console/format.h"
#include "platform/os/clock.h"

namespace kelvara {
namespace {

std::string padded(int value, std::size_t width, char fill) {
    std::string text = std::to_string(value);
    return text.size() < width ? std::string(width - text.size(), fill) + text : text;
}

}  // namespace

std::string local_time_text() {
    static constexpr const char* weekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const qmp::os::LocalTime time = qmp::os::local_time();
    return std::string(weekdays[time.day_of_week]) + " " + months[time.month - 1] + " " +
           padded(time.day, 2, ' ') + " " + padded(time.hour, 2, '0') + ":" + padded(time.minute, 2, '0') +
           ":" + padded(time.second, 2, '0') + " " + padded(time.year, 4, '0');
}

EventLog::EventLog() : started_(qmp::now()) {}

void EventLog::append(std::string_view event) {
    std::string line = local_time_text() + "\t" +
                       qmp::console::format_fixed(qmp::seconds_between(qmp::now(), started_), 3) + "\t";
    line.append(event).append("\r\n");
    text_ += line;
    // A log that cannot be written must not stop the computation it describes.
    if (file_.is_open() && file_.write(line.data(), line.size()) != line.size()) file_.close();
}

void EventLog::attach(const std::string& path) {
    file_.create(path);
}

}  // namespace kelvara
