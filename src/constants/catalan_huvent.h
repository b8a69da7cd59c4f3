// Catalan's constant by Huvent's series: G = (469137217 Q + 1334025 P) / (512265600 Q), where P/Q is the sum
// of
// (-1)^(k - 1) P(k) / (64^k Q(k)) over k >= 1.
#pragma once

#include <cstdint>

#include "constants/ram_computation.h"
#include "numbers/exact_float.h"
#include "series/bss_p2b2_bbp.h"

namespace kelvara {

const qmp::BSS_P2B2_BBP& catalan_huvent_series();

class CatalanHuvent final : public RamComputation {
  public:
    CatalanHuvent(std::uint64_t precision, std::uint64_t tasks);

    const char* short_name() const override { return "Huvent"; }
    const char* long_name() const override { return "Huvent's Formula"; }
    qmp::OwnedBigFloat compute(const qmp::ComputeContext& context) const override;
    std::uint64_t largest_product() const override;
};

// The kernel of single terms, index k >= 1; P carries the factor 2^(-6k). Capacity of each: 18 words
// (BufferTooSmallException in the kernel's name).
void Catalan_Huvent_BSR_End(qmp::ExactFloat& P, qmp::ExactFloat& Q, std::uint64_t k);

}  // namespace kelvara
