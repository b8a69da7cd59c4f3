// One half of a range as a single task: running it hands its part of the range back to the framework.
#pragma once

#include "platform/parallel/basic_parallelizer.h"

namespace qmp {

class RangeSplitAction final : public BasicAction {
  public:
    // Runs action.run(i) for every i in [start, end).
    RangeSplitAction(BasicParallelizer& framework, BasicAction& action, std::uint64_t start,
                     std::uint64_t end)
        : framework_(framework), action_(action), start_(start), end_(end) {}
    void run(std::uint64_t) override { framework_.run_in_parallel(action_, start_, end_); }

  private:
    BasicParallelizer& framework_;
    BasicAction& action_;
    std::uint64_t start_;
    std::uint64_t end_;
};

}  // namespace qmp
