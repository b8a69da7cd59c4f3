// Fills the table of conversion kernels for one vector type.
#pragma once

#include "multiply/vst/kernels/kernels.h"
#include "multiply/vst/kernels/merge.h"
#include "multiply/vst/kernels/reduce.h"
#include "multiply/vst/kernels/split.h"

namespace {

// Limbs: how the merge forms coefficients.
template <typename V, template <typename, std::uint32_t> class Limbs, std::uint32_t Primes>
constexpr void set_conversions(qmp::vst::ConversionKernels& set) {
    if constexpr (Primes <= qmp::vst::most_primes) {
        set.split[Primes] = split<V, Primes>;
        set.reduce[qmp::vst::chunks_of(Primes)] = reduce<V, qmp::vst::chunks_of(Primes)>;
        set.merge[Primes] = merge<Limbs<V, Primes>>;
        set_conversions<V, Limbs, Primes + 1>(set);
    }
}

template <typename V, template <typename, std::uint32_t> class Limbs>
constexpr qmp::vst::ConversionKernels conversion_set() {
    qmp::vst::ConversionKernels set{};
    set_conversions<V, Limbs, qmp::vst::fewest_primes>(set);
    return set;
}

}  // namespace
