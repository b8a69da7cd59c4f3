#include "console/progress.h"

#include <algorithm>

#include "console/format.h"
#include "platform/os/clock.h"

namespace qmp {
namespace {

constexpr std::int64_t drawings_per_second = 30;
constexpr std::int64_t drawings_at_once = 10;
constexpr std::string_view gap = "  ";

std::int64_t counter() {
    return os::performance_counter().value_or(0);
}

// At least 1, so that it can divide.
std::int64_t frequency() {
    return std::max<std::int64_t>(os::performance_frequency().value_or(1), 1);
}

// The longest front of a text that fits so many columns.
std::string_view cut(std::string_view text, std::uint64_t columns) {
    std::size_t length = std::min<std::uint64_t>(text.size(), columns * 4);
    while (length > 0 && console::count_characters(text.substr(0, length)) > columns) --length;
    // Not in the middle of a character.
    while (length < text.size() && length > 0 && (static_cast<unsigned char>(text[length]) & 0xc0) == 0x80)
        --length;
    return text.substr(0, length);
}

}  // namespace

void ConsoleProgress::begin_step(std::string_view title, std::string_view) {
    if (active_) {
        // The step before was left by an exception.
        erase_label();
        end_line();
    }
    active_ = true;
    line_columns_ = 0;
    drawn_columns_ = 0;
    write_on_line(title, 'w');
    started_ = counter();
}

void ConsoleProgress::heading(std::string_view text) {
    console::write(text, 'w');
    console::println(":", 'w');
    console::reset_color();
}

void ConsoleProgress::note(std::string_view text, console::Colour colour) {
    erase_label();
    write_on_line(text, colour);
    redraw();
}

void ConsoleProgress::push_label(std::string_view text, console::Colour colour) {
    labels_.push_back({std::string(text), colour});
    redraw();
}

void ConsoleProgress::pop_label() {
    if (labels_.empty()) return;
    labels_.pop_back();
    // A part that ends is mostly followed by another one at once: only what stays is worth a drawing.
    if (counter() >= drawing_paid_) redraw();
}

void ConsoleProgress::end_step() {
    if (!active_) return;
    const std::int64_t elapsed = counter() - started_;
    erase_label();
    end_line();
    active_ = false;
    console::write("Time:    ", 'w');
    console::println(console::format_time(static_cast<double>(elapsed) / static_cast<double>(frequency())),
                     'T');
    console::reset_color();
}

void ConsoleProgress::message(std::string_view text, console::Colour colour) {
    erase_label();
    end_line();
    console::println(text, colour);
    console::reset_color();
    redraw();
}

void ConsoleProgress::write_on_line(std::string_view text, console::Colour colour) {
    console::write(text, colour);
    console::reset_color();
    const std::size_t line_start = text.rfind('\n');
    if (line_start != std::string_view::npos) {
        line_columns_ = 0;
        text.remove_prefix(line_start + 1);
    }
    line_columns_ += console::count_characters(text);
}

void ConsoleProgress::end_line() {
    if (line_columns_ > 0) console::newline();
    line_columns_ = 0;
}

void ConsoleProgress::redraw() {
    if (!active_ || !console::can_rewrite_lines()) return;
    if (labels_.empty()) {
        erase_label();
    } else if (may_draw()) {
        draw_label();
    }
}

// Drawings each take their share of time; a few may be taken ahead, so that labels which change after
// a pause show at once.
bool ConsoleProgress::may_draw() {
    const std::int64_t share = frequency() / drawings_per_second;
    const std::int64_t present = counter();
    drawing_paid_ = std::max(drawing_paid_, present - drawings_at_once * share);
    if (drawing_paid_ > present) return false;
    drawing_paid_ += share;
    return true;
}

void ConsoleProgress::draw_label() {
    // The window's last column stays free: a character there moves some consoles to the next line, from
    // where backspaces do not lead back.
    const std::uint64_t taken = line_columns_ + gap.size() + 1;
    const std::uint64_t columns = console::window_columns();
    const std::uint64_t room = columns > taken ? columns - taken : 0;
    if (room == 0) return erase_label();

    console::write(std::string(drawn_columns_, '\b') + std::string(gap));
    std::uint64_t columns_now = 0;
    for (const Piece& piece : labels_) {
        const std::string_view shown = cut(piece.text, room - columns_now);
        console::write(shown, piece.colour);
        columns_now += console::count_characters(shown);
    }
    columns_now += gap.size();
    console::reset_color();
    if (drawn_columns_ > columns_now) {
        const std::uint64_t rest = drawn_columns_ - columns_now;
        console::write(std::string(rest, ' ') + std::string(rest, '\b'));
    }
    drawn_columns_ = columns_now;
}

void ConsoleProgress::erase_label() {
    if (drawn_columns_ == 0) return;
    const std::string back(drawn_columns_, '\b');
    console::write(back + std::string(drawn_columns_, ' ') + back);
    drawn_columns_ = 0;
}

}  // namespace qmp
