// Progress of a session: drawn on the console, its steps and messages noted in the event log, and all of it
// told to an observer.
#pragma once

#include "console/progress.h"
#include "sessions/event_log.h"

namespace kelvara {

class SessionProgress final : public qmp::ConsoleProgress {
  public:
    // Without an observer nobody else is told.
    SessionProgress(EventLog& log, qmp::Progress* observer)
        : log_(log), observer_(observer ? *observer : nobody_) {}

    void begin_step(std::string_view title, std::string_view status) override {
        log_.append(status);
        ConsoleProgress::begin_step(title, status);
        observer_.begin_step(title, status);
    }
    void heading(std::string_view text) override {
        log_.append(text);
        ConsoleProgress::heading(text);
        observer_.heading(text);
    }
    void note(std::string_view text, qmp::console::Colour colour) override {
        ConsoleProgress::note(text, colour);
        observer_.note(text, colour);
    }
    void push_label(std::string_view text, qmp::console::Colour colour) override {
        ConsoleProgress::push_label(text, colour);
        observer_.push_label(text, colour);
    }
    void pop_label() override {
        ConsoleProgress::pop_label();
        observer_.pop_label();
    }
    void end_step() override {
        observer_.end_step();
        ConsoleProgress::end_step();
    }
    void message(std::string_view text, qmp::console::Colour colour) override {
        log_.append(text);
        ConsoleProgress::message(text, colour);
        observer_.message(text, colour);
    }

  private:
    EventLog& log_;
    qmp::SilentProgress nobody_;
    qmp::Progress& observer_;
};

}  // namespace kelvara
