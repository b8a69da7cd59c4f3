// One constant's computation in memory: what an algorithm of the catalogue makes for a size and a task
// count.
#pragma once

#include <algorithm>
#include <cstdint>

#include "numbers/compute_context.h"

namespace kelvara {

class RamComputation {
  public:
    virtual ~RamComputation() = default;

    virtual const char* short_name() const = 0;
    virtual const char* long_name() const = 0;
    // The constant's value to precision() words, in a buffer of the context's region. Reports its steps
    // to the context's progress.
    virtual qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const = 0;

    std::uint64_t precision() const { return precision_; }  // words
    std::uint64_t tasks() const { return tasks_; }
    // The figure that screens show as the memory needed, in bytes.
    std::uint64_t memory_estimate() const { return memory_estimate_; }
    // Upper bound of what compute() takes from the region, in bytes: what a session reserves. At least the
    // estimate.
    std::uint64_t working_bytes() const { return std::max(memory_estimate_, memory_taken_); }
    // Largest product, in words, that compute() asks of the multiplication: sizes the twiddle tables.
    virtual std::uint64_t largest_product() const = 0;

  protected:
    RamComputation(std::uint64_t precision, std::uint64_t tasks)
        : precision_(precision), tasks_(tasks ? tasks : 1) {}
    std::uint64_t precision_;
    std::uint64_t tasks_;
    std::uint64_t memory_estimate_ = 0;
    std::uint64_t memory_taken_ = 0;  // where the estimate alone would be no bound
};

}  // namespace kelvara
