// Progress of a session: drawn on the console, its steps and messages noted in the event log.
#pragma once

#include "console/progress.h"
#include "sessions/event_log.h"

namespace kelvara {

class SessionProgress final : public qmp::ConsoleProgress {
  public:
    explicit SessionProgress(EventLog& log) : log_(log) {}

    void begin_step(std::string_view title, std::string_view status) override {
        log_.append(status);
        ConsoleProgress::begin_step(title, status);
    }
    void message(std::string_view text, qmp::console::Colour colour) override {
        log_.append(text);
        ConsoleProgress::message(text, colour);
    }

  private:
    EventLog& log_;
};

}  // namespace kelvara
