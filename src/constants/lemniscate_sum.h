// The lemniscate constant: the two terms of a formula, summed one after the other.
#pragma once

#include "constants/constant_info.h"
#include "constants/lemniscate_series.h"
#include "constants/ram_computation.h"

namespace kelvara {

class LemniscateSum final : public RamComputation {
  public:
    // The names outlive the computation.
    LemniscateSum(std::uint64_t precision, std::uint64_t tasks, const LemniscateFormula& formula,
                  const AlgorithmInfo& names);

    const char* short_name() const override { return names_.short_name; }
    const char* long_name() const override { return names_.long_name; }
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override;
    std::uint64_t largest_product() const override;

  private:
    LemniscateFormula formula_;
    const AlgorithmInfo& names_;
};

}  // namespace kelvara
