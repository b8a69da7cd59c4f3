// Memory of exactly the sizes that the Newton iterations promise to need.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "multiply/twiddle_set.h"
#include "numbers/newton.h"
#include "numbers/number_buffers.h"

namespace kelvara_test {

// Product scratch and twiddle tables for iterations to p words.
class NewtonMemory {
  public:
    explicit NewtonMemory(std::uint64_t p, qmp::ParallelContext parallel = qmp::ParallelContext::sequential())
        : parallel_(parallel),
          table_(qmp::TwiddleSet::bytes_needed(qmp::newton_largest_product(p)) / 8 + 8),
          twiddles_(table_.data(), table_.size() * 8, qmp::newton_largest_product(p), parallel),
          scratch_(qmp::newton_multiply_scratch_bytes(p, parallel.tds) / 8) {}

    qmp::MultiplyContext context() { return {parallel_, &twiddles_, scratch_.data(), scratch_.size()}; }

  private:
    qmp::ParallelContext parallel_;
    WatchedWords table_;
    qmp::TwiddleSet twiddles_;
    WatchedWords scratch_;
};

}  // namespace kelvara_test
