// Series with two partial products: P/Q over (a, b] is the sum over k = a + 1 .. b of s_k p(k)/q(k), where
// the P of a single term may carry a power of two.
#pragma once

#include <array>
#include <cstdint>

#include "multiply/multiply_context.h"
#include "numbers/exact_float.h"
#include "series/binary_splitting_series.h"

namespace qmp {

class BSS_P2B2_BBP : public CostedSeries {
  public:
    // P, Q, and the temporary of the merges.
    static constexpr std::size_t output_count = 2;
    static constexpr std::size_t buffer_count = 3;
    using Buffers = std::array<ExactFloat, buffer_count>;
    // The running values of a plan: P and Q.
    static constexpr std::size_t running_count = 2;
    static constexpr const char* psr_function = "BSS_P2B2_BBP::B_PSR()";

    // A range of up to longest_leaf terms. BufferTooSmallException in the kernel's name.
    virtual void BSR_End(ExactFloat& P, ExactFloat& Q, const MultiplyContext& scratch, std::uint64_t a,
                         std::uint64_t b) const = 0;

    void leaf(const MultiplyContext& context, Buffers& out, std::uint64_t a, std::uint64_t b) const {
        BSR_End(out[0], out[1], context, a, b);
    }
    // P = P0 Q1 +- P1 Q0, Q = Q0 Q1; buffers as in BSS_P2B3_Type0::merge.
    static void merge(const MultiplyContext& context, Buffers& whole, const Buffers& right, bool subtract);

  protected:
    using CostedSeries::CostedSeries;
};

}  // namespace qmp
