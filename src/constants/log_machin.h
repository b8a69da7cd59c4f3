// Log(n) by a Machin-like formula, term by term.
#pragma once

#include <string>

#include "constants/log_formula.h"
#include "constants/ram_computation.h"

namespace kelvara {

class LogMachin final : public RamComputation {
  public:
    // The formula has at least one term.
    LogMachin(std::uint64_t precision, std::uint64_t tasks, const LogFormula& formula,
              const std::string& short_name, const std::string& long_name);

    const char* short_name() const override { return short_name_.c_str(); }
    const char* long_name() const override { return long_name_.c_str(); }
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override;
    std::uint64_t largest_product() const override;

  private:
    LogFormula formula_;
    std::string short_name_;
    std::string long_name_;
};

}  // namespace kelvara
