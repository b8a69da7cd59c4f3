// Pi by one of its series: a quotient times the inverse square root of a small integer.
#pragma once

#include "constants/pi_formulas.h"
#include "constants/ram_computation.h"

namespace kelvara {

class PiSeries final : public RamComputation {
  public:
    // The formula outlives the computation.
    PiSeries(std::uint64_t precision, std::uint64_t tasks, const PiFormula& formula);

    const char* short_name() const override { return formula_.short_name; }
    const char* long_name() const override { return formula_.long_name; }
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override;
    std::uint64_t largest_product() const override;

  private:
    // The plan's cost factor.
    double factor() const { return formula_.reduced ? 0.5 : 1.0; }

    const PiFormula& formula_;
};

}  // namespace kelvara
