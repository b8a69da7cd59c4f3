// Where the time of a computation goes, as its progress tells: seconds of every step, and within a step of
// its labels.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "console/progress.h"
#include "platform/timers.h"

namespace bench {

class StepTimes final : public qmp::SilentProgress {
  public:
    struct Part {
        std::string name;
        double seconds = 0;
    };
    struct Step {
        std::string name;
        double seconds = 0;
        std::vector<Part> parts;  // in the order of their first use; together all of the step
    };

    void begin_step(std::string_view title, std::string_view status) override;
    void push_label(std::string_view text, qmp::console::Colour colour) override;
    void pop_label() override;
    void end_step() override;

    const std::vector<Step>& steps() const { return steps_; }
    // Seconds of the steps of a name, or of one part of them: a sum of several series has several; 0 without
    // any.
    double seconds(std::string_view step) const;
    double seconds(std::string_view step, std::string_view part) const;

    // Parts of the series.
    static constexpr const char* folds = "folds";
    static constexpr const char* finishing = "Finishing Series";

  private:
    // What the labels on the stack say is going on.
    std::string part() const;
    std::string series_part() const;
    // Counts the time since the last call for the part that the labels have named until now.
    void count();

    std::vector<Step> steps_;
    std::vector<std::string> labels_;
    std::string last_popped_;  // of the block's own labels the last that went
    qmp::CounterTimePoint begun_;
    qmp::CounterTimePoint counted_;
};

}  // namespace bench
