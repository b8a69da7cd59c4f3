// The kernel of peak.h over a vector type.
#pragma once

#include "multiply/vectors/inline.h"
#include "stress/kernels/peak.h"

namespace {

// Enough chains for two units whose results take up to six cycles, in the registers that every level has.
constexpr int peak_chains = 12;

// x * factor + term stays between 1 and 2.
template <typename V>
double run_peak(std::uint64_t rounds) {
    typename V::Real factor = V::set(0.5), term = V::set(0.75);
    V::pin(factor);
    V::pin(term);
    typename V::Real x[peak_chains];
    KERNEL_UNROLL(12)
    for (int i = 0; i < peak_chains; ++i) x[i] = V::set(1.0 + 0.0625 * i);
    for (std::uint64_t round = 0; round < rounds; ++round) {
        KERNEL_UNROLL(12)
        for (int i = 0; i < peak_chains; ++i) x[i] = V::mul_add(x[i], factor, term);
    }
    for (int i = 1; i < peak_chains; ++i) x[0] = V::add(x[0], x[i]);
    alignas(64) double sums[V::lanes];
    V::store(sums, x[0]);
    double sum = 0;
    for (int i = 0; i < V::lanes; ++i) sum += sums[i];
    return sum;
}

// `fused`: a multiply-add is one instruction, not two.
template <typename V>
constexpr kelvara::PeakKernel peak_kernel(bool fused) {
    return {run_peak<V>, static_cast<double>(peak_chains * V::lanes * (fused ? 1 : 2))};
}

}  // namespace
