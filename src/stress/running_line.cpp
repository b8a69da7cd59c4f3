#include "stress/running_line.h"

#include <chrono>
#include <system_error>

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::chrono::seconds between_drawings{1};

}  // namespace

RunningLine::RunningLine(std::string_view title, std::function<std::string()> status,
                         const qmp::StartThread& start_thread)
    : status_(std::move(status)), title_columns_(console::count_characters(title)) {
    console::write(title, 'w');
    if (!console::can_rewrite_lines()) return;
    try {
        thread_.emplace(start_thread([this] { show_status(); }));
    } catch (const std::system_error&) {
        // The test goes on without.
    }
}

RunningLine::~RunningLine() {
    {
        const std::lock_guard lock(mutex_);
        end_line();
    }
    wake_.notify_all();
}

void RunningLine::error(std::string_view text) {
    const std::lock_guard lock(mutex_);
    end_line();
    console::println(text, 'R');
    console::reset_color();
}

void RunningLine::show_status() {
    std::unique_lock lock(mutex_);
    while (!wake_.wait_for(lock, between_drawings, [this] { return ended_; })) redraw(status_());
}

// The window's last column stays free: a character there moves some consoles to the next line.
void RunningLine::redraw(const std::string& text) {
    if (title_columns_ + text.size() + 1 > console::window_columns()) return;
    std::string drawing(drawn_, '\b');
    drawing += text;
    if (drawn_ > text.size()) {
        drawing += std::string(drawn_ - text.size(), ' ') + std::string(drawn_ - text.size(), '\b');
    }
    console::write(drawing, 'T');
    console::reset_color();
    drawn_ = text.size();
}

void RunningLine::end_line() {
    if (ended_) return;
    ended_ = true;
    if (drawn_ > 0) redraw("");
    console::newline();
}

}  // namespace kelvara
