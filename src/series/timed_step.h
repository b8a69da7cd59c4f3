// A step of the progress that ends with its scope, also when an exception passes.
#pragma once

#include <string_view>

#include "console/progress.h"

namespace qmp {

class TimedStep {
  public:
    TimedStep(Progress* progress, std::string_view title, std::string_view status) : progress_(progress) {
        progress_->begin_step(title, status);
    }
    ~TimedStep() { end(); }
    TimedStep(const TimedStep&) = delete;
    TimedStep& operator=(const TimedStep&) = delete;

    // Before the scope's own end.
    void end() {
        if (progress_) progress_->end_step();
        progress_ = nullptr;
    }

  private:
    Progress* progress_;
};

}  // namespace qmp
