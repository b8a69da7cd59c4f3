// The stages of a session with their times: one line each, kept for the report and, when a log file is
// attached, written to it at once.
//
// A line is the local date and time ("Thu Nov 12 21:11:02 2026"), a tab, the seconds since the log was
// started with 3 decimals, a tab, the event, and CR LF. Appended from the main thread only.
#pragma once

#include <string>
#include <string_view>

#include "platform/timers.h"
#include "swap/sequential_file.h"

namespace kelvara {

class EventLog {
  public:
    EventLog();

    void append(std::string_view event);
    // Lines appended from now on also go to this file (created or emptied). Throws FileException.
    void attach(const std::string& path);

    const std::string& text() const { return text_; }

  private:
    qmp::CounterTimePoint started_;
    std::string text_;
    qmp::FileIO::SequentialFile file_;
};

}  // namespace kelvara
