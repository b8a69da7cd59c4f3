#include "sessions/event_log.h"

#include "console/format.h"
#include "platform/local_time.h"

namespace kelvara {

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
