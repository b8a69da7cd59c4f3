// e by the Taylor series of exp(1), or of exp(-1) and its reciprocal: the same cost, the same digits, other
// arithmetic.
#pragma once

#include "constants/ram_computation.h"

namespace kelvara {

class ETaylor final : public RamComputation {
  public:
    // The series of exp(-1) when `negative`.
    ETaylor(std::uint64_t precision, std::uint64_t tasks, bool negative);

    const char* short_name() const override { return negative_ ? "exp(-1)" : "exp(1)"; }
    const char* long_name() const override {
        return negative_ ? "Taylor Series of exp(-1)" : "Taylor Series of exp(1)";
    }
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override;
    std::uint64_t largest_product() const override;

  private:
    bool negative_;
};

}  // namespace kelvara
