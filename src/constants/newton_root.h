// The square root of an integer and the golden ratio: an inverse square root by Newton's method, and a few
// operations with single words.
#pragma once

#include "constants/ram_computation.h"
#include "multiply/word.h"

namespace kelvara {

// sqrt(n) = n / sqrt(n).
class SquareRootNewton : public RamComputation {
  public:
    // n >= 1. StringException ("Internal Error: Maximum Size Exceeded") when no multiplication reaches the
    // precision.
    SquareRootNewton(std::uint64_t precision, std::uint64_t tasks, qmp::Word n);

    const char* short_name() const override { return "Newton"; }
    const char* long_name() const override { return "Newton's Method"; }
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override;
    std::uint64_t largest_product() const override;

  protected:
    // What is done to the root before the step ends.
    virtual void finish(const qmp::ComputeContext&, qmp::BigFloat&) const {}

  private:
    qmp::Word n_;
};

// (sqrt(5) + 1) / 2.
class GoldenRatioNewton final : public SquareRootNewton {
  public:
    GoldenRatioNewton(std::uint64_t precision, std::uint64_t tasks) : SquareRootNewton(precision, tasks, 5) {}

  private:
    void finish(const qmp::ComputeContext& context, qmp::BigFloat& root) const override;
};

}  // namespace kelvara
