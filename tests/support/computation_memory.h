// The reserved memory that a computation runs in, of an exact size, and its context.
#pragma once

#include <cstdint>
#include <vector>

#include "numbers/compute_context.h"
#include "support/random_words.h"
#include "support/twiddle_memory.h"

namespace kelvara_test {

class ComputationMemory {
  public:
    // What a session reserves beyond the estimate of a computation.
    static constexpr std::uint64_t reserve = (std::uint64_t{1} << 20) + 64;

    ComputationMemory(std::uint64_t estimate, std::uint64_t largest_product)
        : words_((estimate + reserve) / sizeof(qmp::Word), garbage),
          region_(words_.data(), words_.size() * sizeof(qmp::Word)),
          twiddles_(largest_product) {}

    qmp::ComputeContext context(qmp::ParallelContext parallel, qmp::Progress* progress) {
        return {parallel, twiddles_.get(), &region_, progress};
    }
    const qmp::RegionAllocator& region() const { return region_; }

  private:
    std::vector<qmp::Word> words_;
    qmp::RegionAllocator region_;
    TwiddleMemory twiddles_;
};

}  // namespace kelvara_test
