// The Euler-Mascheroni constant by the Brent-McMillan method: with n = 2^e,
//   gamma = A/B - ln n, to exp(-4n), or refined gamma = A/B - C/B^2 - ln n, to exp(-8n),
// where A and B are the sums of Series_EulerGamma_BM_AB and C that of EulerGammaSeriesC. ln n is a sum of
// three ArcCoth.
#pragma once

#include "constants/constant_info.h"
#include "constants/euler_gamma_series_c.h"
#include "constants/ram_computation.h"
#include "series/psr_plan.h"
#include "series/series_euler_gamma_bm_ab.h"

namespace kelvara {

class BrentMcMillan final : public RamComputation {
  public:
    // n = 2^exponent, that of the series: -1 <= exponent <= 63. InvalidParametersException when the sums
    // would be too long for n, LimitExceededException when no multiplication reaches their length. `names`
    // outlives the computation.
    BrentMcMillan(std::uint64_t precision, std::uint64_t tasks, std::int32_t exponent, bool refined,
                  const AlgorithmInfo& names);

    const char* short_name() const override { return names_.short_name; }
    const char* long_name() const override { return names_.long_name; }
    // Warns on the console when the parameter cannot reach the precision, and goes on.
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override;
    std::uint64_t largest_product() const override;

  private:
    struct Quotient;

    void warn_if_too_small() const;
    Quotient sum_ab(const qmp::ComputeContext& context) const;
    // C/B^2.
    qmp::OwnedBigFloat sum_c(const qmp::ComputeContext& context, const Quotient& ab) const;
    // Without ln n.
    qmp::OwnedBigFloat sum_quotients(const qmp::ComputeContext& context) const;

    qmp::Series_EulerGamma_BM_AB ab_;
    EulerGammaSeriesC c_;
    qmp::PsrPlan plan_;  // of A and B
    bool refined_;
    std::uint64_t c_words_ = 0;  // that the correction is needed to; 0: it is left out
    const AlgorithmInfo& names_;
};

}  // namespace kelvara
