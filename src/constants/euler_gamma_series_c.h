// The correcting sum of the refined Brent-McMillan method: with n = 2^e,
//   4 n C = sum over k = 0 .. 2n of ((2k)!)^3 / ((k!)^4 (16 n)^(2k)) = 1 + P/Q,
// where P(k) = R(k) = (2k - 1)^3 and Q(k) = 32 n^2 k = 2^(2e + 5) k.
//
// Its terms fall until the index 2n, by exp(4n) in all.
#pragma once

#include <cstdint>

#include "numbers/basic_int.h"
#include "series/bss_p2b3_type0.h"

namespace kelvara {

class EulerGammaSeriesC final : public qmp::BSS_P2B3_Type0 {
  public:
    // n = 2^exponent, -1 <= exponent <= 63.
    explicit EulerGammaSeriesC(std::int32_t exponent);

    // The smallest index whose term is below the first one by p words and e; at most 2n.
    std::uint64_t TermsForPrecision(std::uint64_t p) const override;
    std::uint64_t PrecisionAtIndex(double index, std::uint64_t p) const override;
    // Never less than the terms fall. Where they hardly do, near 2n, a little more is claimed: the plan's
    // blocks would get as short as single terms.
    double DecayBetween(double a, double b) const override;

    void BSR_End(qmp::ExactFloat& P, qmp::ExactFloat& Q, qmp::ExactFloat& R,
                 const qmp::MultiplyContext& scratch, std::uint64_t a, std::uint64_t b) const override;

  private:
    // ln of the first term less ln of the term of index x.
    double decay(double x) const;

    std::int32_t exponent_;
    double last_;  // 2n
};

// The kernel of the term of index k >= 1. Capacities in words: R 3, Q 6, P 3 (BufferTooSmallException in the
// kernel's name).
void EulerGamma_BMR_seriesC_BSR_End1(qmp::BasicInt& P, qmp::BasicInt& Q, qmp::BasicInt& R,
                                     std::int32_t exponent, std::uint64_t k);

}  // namespace kelvara
