// A constant that is one series of three products: (w Q +- P) / (d Q), where P/Q is the sum of its terms from
// index 1 on.
#pragma once

#include "constants/constant_info.h"
#include "constants/ram_computation.h"
#include "series/bss_p2b3_type0.h"
#include "series/sum_series.h"

namespace kelvara {

struct SeriesFormula {
    const qmp::BSS_P2B3_Type0& series;
    qmp::Word w;  // the term of index 0 is w / d
    qmp::Word d;
};

class SeriesComputation final : public RamComputation {
  public:
    // The names outlive the computation, and so does the formula's series.
    SeriesComputation(std::uint64_t precision, std::uint64_t tasks, const SeriesFormula& formula,
                      const AlgorithmInfo& names)
        : RamComputation(precision, tasks), formula_(formula), names_(names) {
        memory_estimate_ = qmp::memory_estimate(formula.series, precision_, tasks_);
    }

    const char* short_name() const override { return names_.short_name; }
    const char* long_name() const override { return names_.long_name; }
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override {
        return SumSeries(formula_.series, context, precision_, formula_.w, formula_.d, 1);
    }
    std::uint64_t largest_product() const override {
        return qmp::sum_largest_product(formula_.series, precision_);
    }

  private:
    SeriesFormula formula_;
    const AlgorithmInfo& names_;
};

}  // namespace kelvara
