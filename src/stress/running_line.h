// The line that a test leaves on screen, and what it shows behind that while the test runs.
//
// On a console the time and the products so far are rewritten about once a second; elsewhere they are left
// out, so that a file or a pipe receives one line a test. Usable from any thread.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "console/console.h"
#include "platform/parallel/child_thread.h"

namespace kelvara {

class RunningLine {
  public:
    // Writes the title. status() tells what stands behind it.
    RunningLine(std::string_view title, std::function<std::string()> status,
                const qmp::StartThread& start_thread);
    // Erases the status and ends the line, unless a message already did.
    ~RunningLine();
    RunningLine(const RunningLine&) = delete;

    // An error, on a line of its own below; the status is shown no more.
    void error(std::string_view text);

  private:
    void show_status();
    void redraw(const std::string& text);
    void end_line();

    std::function<std::string()> status_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool ended_ = false;
    std::uint64_t title_columns_;
    std::uint64_t drawn_ = 0;  // columns of the status on screen
    std::optional<qmp::JoiningThread> thread_;
};

}  // namespace kelvara
