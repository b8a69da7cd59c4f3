// P, Q, R series whose leaves are halved down to single terms.
//
// A Kernel type is one of leaf_bisect() that also gives
//   alternating, size_margin, leaf_size     of the series
//   TermFactors term_factors() const
//   bool sum_leaf(ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a, std::uint64_t b) const
// which sums a range with straight-line code, or returns false with nothing written.
#pragma once

#include <cstdint>
#include <utility>

#include "series/bss_p2b3_type0.h"
#include "series/leaf_bisection.h"
#include "series/series_cost.h"

namespace qmp {

template <typename Kernel>
class TermByTermSeries : public BSS_P2B3_Type0 {
  public:
    explicit TermByTermSeries(const SeriesCost& model, Kernel kernel = {})
        : BSS_P2B3_Type0(Kernel::alternating, Kernel::size_margin, Kernel::leaf_size, model),
          kernel_(std::move(kernel)) {}

    TermFactors term_factors() const override { return kernel_.term_factors(); }
    void BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, const MultiplyContext&, std::uint64_t a,
                 std::uint64_t b) const override {
        if (kernel_.sum_leaf(P, Q, R, a, b)) return;
        LeafOutputs out = {{P.base, P.AL}, {Q.base, Q.AL}, {R.base, R.AL}};
        leaf_bisect(kernel_, alternating, out, a, b);
        set_leaf(P, out.P);
        set_leaf(Q, out.Q);
        set_leaf(R, out.R);
    }

  private:
    Kernel kernel_;
};

}  // namespace qmp
