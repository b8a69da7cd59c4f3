// Series with three partial products: P/Q over (a, b] is the sum over k = a + 1 .. b of
// s_k (P(k)/Q(k)) times the product over j = a + 1 .. k - 1 of R(j)/Q(j); R is the product of the R(k).
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "multiply/multiply_context.h"
#include "numbers/exact_float.h"
#include "series/binary_splitting_series.h"
#include "series/common_factors.h"

namespace qmp {

class BSS_P2B3_Type0 : public CostedSeries {
  public:
    // P, Q, R, and the temporary of the merges.
    static constexpr std::size_t output_count = 3;
    static constexpr std::size_t buffer_count = 4;
    using Buffers = std::array<ExactFloat, buffer_count>;
    // The running values of a plan: P and Q.
    static constexpr std::size_t running_count = 2;
    static constexpr const char* psr_function = "BSS_P2B3_Type0::B_PSR()";

    // A range of up to longest_leaf terms. BufferTooSmallException in the kernel's name.
    virtual void BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, const MultiplyContext& scratch,
                         std::uint64_t a, std::uint64_t b) const = 0;

    // What is known of the terms' factors, so that merges can take common ones out.
    virtual TermFactors term_factors() const { return {}; }

    void leaf(const MultiplyContext& context, Buffers& out, std::uint64_t a, std::uint64_t b) const {
        BSR_End(out[0], out[1], out[2], context, a, b);
    }
    // P = P0 Q1 +- R0 P1, Q = Q0 Q1, R = R0 R1. `whole` holds the left half's values at the start of its
    // buffers, and receives the result there; `right` may lie above them in the same buffers.
    static void merge(const MultiplyContext& context, Buffers& whole, const Buffers& right, bool subtract);
    // Takes out what both sides of a merge have in common.
    static void cancel(const MultiplyContext& context, const RangeFactors& factors, Buffers& left,
                       Buffers& right) {
        factors.factors->cancel(context, factors.level, left[2], right[1]);
    }

  protected:
    using CostedSeries::CostedSeries;
};

// What merges may take out of a series that knows its terms' factors, whose last index is `last`.
std::optional<CommonFactors> common_factors(const BSS_P2B3_Type0& series, std::uint64_t last);
inline std::optional<CommonFactors> common_factors(const BinarySplittingSeries&, std::uint64_t) {
    return std::nullopt;
}

}  // namespace qmp
