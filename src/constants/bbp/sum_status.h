// Where a sum of hours or days stands.
#pragma once

#include <cstdint>
#include <string>

#include "console/progress.h"
#include "platform/timers.h"

namespace kelvara::bbp {

// "1 / 4 -> 37.125%" behind the step's title, drawn anew a few times a second. Where lines cannot be
// rewritten it is a line of its own every ten minutes.
class SumStatus {
  public:
    SumStatus(qmp::Progress& progress, std::uint64_t series, std::uint64_t of_series,
              bool lines_can_be_rewritten, qmp::ClockSystem& clocks = qmp::clock_system());
    ~SumStatus();
    SumStatus(const SumStatus&) = delete;

    // Of one thread at a time.
    void show(std::uint64_t blocks_done, std::uint64_t blocks);

  private:
    qmp::Progress& progress_;
    qmp::ClockSystem& clocks_;
    const std::string series_;
    const bool rewrites_;
    qmp::CounterTimePoint shown_;
    bool label_ = false;
};

}  // namespace kelvara::bbp
