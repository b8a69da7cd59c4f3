// The lemniscate constant as a sum of two inverse lemniscate sines, each by its Taylor series:
//   ArcSinlemn(p/q) = (p/q) (1 + S),  S = P/Q with R(k) = p^4 (4k - 3) (2k - 1), P(k) = R(k), Q(k) = q^4 (4k
//   + 1) 2k.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "numbers/basic_int.h"
#include "series/bss_p2b3_type0.h"

namespace kelvara {

// 0 < p < q < 2^16, 4 p^4 < q^4.
struct ArcSinlemnArgument {
    std::uint64_t p;
    std::uint64_t q;
};

class ArcSinlemnSeries final : public qmp::BSS_P2B3_Type0 {
  public:
    explicit ArcSinlemnSeries(ArcSinlemnArgument x);

    void BSR_End(qmp::ExactFloat& P, qmp::ExactFloat& Q, qmp::ExactFloat& R,
                 const qmp::MultiplyContext& scratch, std::uint64_t a, std::uint64_t b) const override;
    qmp::TermFactors term_factors() const override;

  private:
    ArcSinlemnArgument x_;
    qmp::Word p4_;
    qmp::Word q4_;
};

// scale1 ArcSinlemn(x1) + scale2 ArcSinlemn(x2).
struct LemniscateFormula {
    struct Term {
        ArcSinlemnArgument x;
        std::int64_t scale;
    };
    Term first;
    Term second;
};

// By algorithm index of the catalogue: Gauss, Sebah.
const LemniscateFormula& lemniscate_formula(std::uint32_t algorithm);

// The kernel of single terms, index k >= 1. Capacity of each output: 3 words (BufferTooSmallException in the
// kernel's name; in that of "BasicInt::set_BasicInt()" for P, which is a copy of R).
void ArcSinlemn_BSR_End1(qmp::BasicInt& P, qmp::BasicInt& Q, qmp::BasicInt& R, qmp::Word p4, qmp::Word q4,
                         std::uint64_t k);

}  // namespace kelvara
