// The Taylor series of ArcCoth(x) for an integer x, and multiples of its value: what ArcCoth(n) is by itself,
// and the summands of logarithms.
//
//   ArcCoth(x) = sum over k >= 0 of 1 / ((2k + 1) x^(2k + 1)) = (1 + S) / x,
//   S = sum over k >= 1 of 1 / ((2k + 1) x^(2k)) = P/Q, with P(k) = 1, Q(k) = x^2 (2k + 1), R(k) = 2k + 1.
//
// Each multiple takes memory_estimate(ArcCothSeries(x), p, tasks) bytes at most, beside what is kept
// meanwhile.
#pragma once

#include <cstdint>

#include "numbers/basic_int.h"
#include "numbers/compute_context.h"
#include "series/bss_p2b3_type0.h"

namespace kelvara {

class ArcCothSeries final : public qmp::BSS_P2B3_Type0 {
  public:
    // 2 <= x < 2^32.
    explicit ArcCothSeries(std::uint64_t x);

    void BSR_End(qmp::ExactFloat& P, qmp::ExactFloat& Q, qmp::ExactFloat& R,
                 const qmp::MultiplyContext& scratch, std::uint64_t a, std::uint64_t b) const override;
    qmp::TermFactors term_factors() const override;

  private:
    std::uint64_t x_;
    qmp::Word square_;  // x^2
};

// c ArcCoth(x) to p words, in a buffer of the context's region, as the step "Summing Series...". c != 0.
qmp::OwnedBigFloat sum_arccoth(const qmp::ComputeContext& context, std::uint64_t x, std::int64_t c,
                               std::uint64_t p);

// The same as a summand, under the heading "18 ArcCoth( 26 )", and a sum of which it is one, to p words. The
// sum's own place serves its successor.
qmp::OwnedBigFloat sum_arccoth_term(const qmp::ComputeContext& context, std::uint64_t x, std::int64_t c,
                                    std::uint64_t p);
qmp::OwnedBigFloat add_arccoth_term(const qmp::ComputeContext& context, qmp::OwnedBigFloat sum,
                                    std::uint64_t x, std::int64_t c, std::uint64_t p);

// The ranges (a, b], from term to term, with x^2 in `square`: small where Q(b) fits one word, large wherever
// x and the indices may be. Capacities in words: P and Q 2 (b - a) + 1, R (b - a) + 1
// (BufferTooSmallException in the kernel's name).
void ArcCoth_BSR_End_small(qmp::BasicInt& P, qmp::BasicInt& Q, qmp::BasicInt& R, qmp::Word square,
                           std::uint64_t a, std::uint64_t b);
void ArcCoth_BSR_End_large(qmp::BasicInt& P, qmp::BasicInt& Q, qmp::BasicInt& R, qmp::Word square,
                           std::uint64_t a, std::uint64_t b);

}  // namespace kelvara
