// How long work tells the user where it stands.
//
// Computations report through the Progress interface; they never print by themselves. A step is one
// console line: its title, what is known about it, a label that is rewritten while the work goes on, and
// the time taken once it is done. Steps do not nest. Labels form a stack: a recursion pushes its own
// part and removes it on the way out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "console/console.h"

namespace qmp {

class Progress {
  public:
    virtual ~Progress() = default;

    // Starts a timed step: `title` is drawn as it stands ("Summing Series...  "), `status` names the step
    // for logs ("Summing Series").
    virtual void begin_step(std::string_view title, std::string_view status) = 0;
    // Between steps: names what the next ones are for, on a line of its own that ends with a colon.
    virtual void heading(std::string_view) {}
    // Text that stays on the step's line, after the title ("4,061 terms").
    virtual void note(std::string_view text, console::Colour colour) = 0;
    // The label stack behind the notes.
    virtual void push_label(std::string_view text, console::Colour colour) = 0;
    virtual void pop_label() = 0;
    // Ends the step: the label is cleared and the time of the step printed.
    virtual void end_step() = 0;
    // A message on a line of its own in the middle of a step (a retry, a failed check); also logged.
    virtual void message(std::string_view text, console::Colour colour) = 0;
};

// Removes its label when it goes out of scope, also when an exception passes.
class ScopedLabel {
  public:
    ScopedLabel(Progress* progress, std::string_view text, console::Colour colour) : progress_(progress) {
        if (progress_) progress_->push_label(text, colour);
    }
    ~ScopedLabel() {
        if (progress_) progress_->pop_label();
    }
    ScopedLabel(const ScopedLabel&) = delete;
    ScopedLabel& operator=(const ScopedLabel&) = delete;

  private:
    Progress* progress_;
};

// Reports nothing.
class SilentProgress : public Progress {
  public:
    void begin_step(std::string_view, std::string_view) override {}
    void note(std::string_view, console::Colour) override {}
    void push_label(std::string_view, console::Colour) override {}
    void pop_label() override {}
    void end_step() override {}
    void message(std::string_view, console::Colour) override {}
};

// Draws steps on the console:
//
//     Summing Series...  Summing: 4,061 terms  Series: 1 / 3 -> 512
//     Time:    0.123 seconds  ( 0.002 minutes )
//
// On a console the label (from "Series:" on) is redrawn in place, in bursts of some ten and then at most
// some thirty times a second, and cut so that the line never leaves the window. Elsewhere labels are left
// out and only the step's title, notes and time are written. Used from one thread.
class ConsoleProgress : public Progress {
  public:
    void begin_step(std::string_view title, std::string_view status) override;
    void heading(std::string_view text) override;
    void note(std::string_view text, console::Colour colour) override;
    void push_label(std::string_view text, console::Colour colour) override;
    void pop_label() override;
    void end_step() override;
    void message(std::string_view text, console::Colour colour) override;

  private:
    struct Piece {
        std::string text;
        console::Colour colour;
    };
    void write_on_line(std::string_view text, console::Colour colour);
    void end_line();
    void redraw();
    bool may_draw();
    void draw_label();
    void erase_label();

    bool active_ = false;
    std::int64_t started_ = 0;         // performance counter
    std::int64_t drawing_paid_ = 0;    // performance counter up to which drawings have used up their share
    std::uint64_t line_columns_ = 0;   // columns that title and notes take
    std::uint64_t drawn_columns_ = 0;  // columns that the label on screen takes
    std::vector<Piece> labels_;
};

}  // namespace qmp
