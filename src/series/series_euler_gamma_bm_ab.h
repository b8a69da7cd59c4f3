// The two sums of the Brent-McMillan method, together: with n = 2^e and the harmonic numbers H_k,
//   A = sum over k >= 0 of (n^k / k!)^2 H_k,   B = sum over k >= 0 of (n^k / k!)^2.
//
// Over a range (a, b]:
//   Q = (a + 1) (a + 2) ... b
//   P = Q (H_b - H_a)
//   R = sum over k = a + 1 .. b of n^(2k) ((k + 1) ... b)^2
//   S = sum over k = a + 1 .. b of n^(2k) ((k + 1) ... b)^2 (1 + H_b - H_k)
// so that over (0, N], B = (R + Q^2) / Q^2 and A = ((P + Q) R - Q S) / Q^3. Counting the harmonic numbers
// from the range's end, not from its beginning, keeps the sums to the square of Q: their denominators are
// among its factors. The one beside them keeps S from being zero. Powers of n are shifts: R and S keep the
// lowest one of their range as their exponent.
//
// In words R and S are about twice as long as Q. Sizes are those of A's numerator, three times as long, which
// leaves each buffer room for a half's R or S beside its number.
#pragma once

#include <array>
#include <cstdint>

#include "multiply/multiply_context.h"
#include "numbers/big_float.h"
#include "numbers/exact_float.h"
#include "series/binary_splitting_series.h"

namespace qmp {

class Series_EulerGamma_BM_AB final : public BinarySplittingSeries {
  public:
    // P, Q, R, S, and the temporary of the merges.
    static constexpr std::size_t output_count = 4;
    static constexpr std::size_t buffer_count = 5;
    using Buffers = std::array<ExactFloat, buffer_count>;
    static constexpr const char* psr_function = "Series_EulerGamma_BM_AB::B_PSR()";
    // The running values of a plan: Q^2, Q P, R, S.
    static constexpr std::size_t running_count = 4;
    using Running = std::array<BigFloat, running_count>;

    // n = 2^exponent, -1 <= exponent <= 63.
    explicit Series_EulerGamma_BM_AB(std::int32_t exponent);

    std::int32_t exponent() const { return exponent_; }

    // With the two sums a plan evaluates the division's operands: the buffers are also large enough for them.
    PlanSizes SizesForPlan(const PsrPlan& plan, std::uint64_t first, std::uint64_t tasks) const override;
    // Longest product, in words, of the plan's evaluation and of the finishing of its sums.
    std::uint64_t largest_product(const PsrPlan& plan) const;
    // The smallest index, from n on, whose term is below the largest one by p words and e, and two terms
    // more.
    std::uint64_t TermsForPrecision(std::uint64_t p) const override;
    // Of A's numerator over (0, x], less its exponent.
    double SizeAtIndex(double x) const override;
    double SizeAtIndexPSR(const double& x) const override { return SizeAtIndex(x); }
    // Terms grow up to the index n: nothing is lost until then.
    double DecayBetween(double a, double b) const override { return decay(b) - decay(a); }

    // Ranges start at even indices, where the caller's does.
    std::uint64_t split(std::uint64_t a, std::uint64_t b) const;
    std::uint64_t cost_split(std::uint64_t a, std::uint64_t b) const;

    // 1 <= b - a < leaf_size.
    void leaf(const MultiplyContext& context, Buffers& out, std::uint64_t a, std::uint64_t b) const;
    // P = P0 Q1 + Q0 P1, Q = Q0 Q1, R = R0 Q1^2 + R1, S = S0 Q1^2 + R0 P1 Q1 + S1; buffers as in
    // BSS_P2B3_Type0::merge, without signs.
    static void merge(const MultiplyContext& context, Buffers& whole, const Buffers& right, bool);

  private:
    // ln of the largest term less ln of the term of index x, 0 up to n.
    double decay(double x) const;

    std::int32_t exponent_;
    double n_;
};

}  // namespace qmp
