// The Taylor series of exp(1) and exp(-1): P/Q over (a, b] is the sum over j = a + 1 .. b of
// s_j / ((a + 1) (a + 2) ... j).
#pragma once

#include <array>
#include <cstdint>

#include "multiply/multiply_context.h"
#include "numbers/exact_float.h"
#include "series/binary_splitting_series.h"

namespace qmp {

class Series_e_Taylor final : public BinarySplittingSeries {
  public:
    // P, Q, and the temporary of the merges.
    static constexpr std::size_t output_count = 2;
    static constexpr std::size_t buffer_count = 3;
    using Buffers = std::array<ExactFloat, buffer_count>;

    // exp(-1) when `negative`.
    explicit Series_e_Taylor(bool negative) : BinarySplittingSeries(negative, 10, 16) {}

    // The smallest n with ln(n!) >= p ln(2^64) + 1, and two terms more.
    std::uint64_t TermsForPrecision(std::uint64_t p) const override;
    double SizeAtIndex(double x) const override { return log_factorial(x); }
    double SizeAtIndexPSR(const double& x) const override { return log_factorial(x); }
    double DecayBetween(double a, double b) const override { return log_factorial(b) - log_factorial(a); }

    // 2 <= b - a < leaf_size.
    void leaf(const MultiplyContext& context, Buffers& out, std::uint64_t a, std::uint64_t b) const;
    // P = P0 Q1 +- P1, Q = Q0 Q1; buffers as in BSS_P2B3_Type0::merge.
    static void merge(const MultiplyContext& context, Buffers& whole, const Buffers& right, bool subtract);
};

}  // namespace qmp
