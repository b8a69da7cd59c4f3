// Fills the table of conversion kernels for one vector type.
#pragma once

#include "multiply/vst/kernels/double_limbs.h"
#include "multiply/vst/kernels/kernels.h"
#include "multiply/vst/kernels/merge.h"
#include "multiply/vst/kernels/reduce.h"
#include "multiply/vst/kernels/split.h"

namespace {

template <typename V, std::uint32_t Primes>
constexpr void set_conversions(qmp::vst::ConversionKernels& set) {
    if constexpr (Primes <= qmp::vst::most_primes) {
        set.split[Primes] = split<V, Primes>;
        set.reduce[qmp::vst::chunks_of(Primes)] = reduce<V, qmp::vst::chunks_of(Primes)>;
        set.merge[Primes] = merge<DoubleLimbs<V, Primes>>;
        set_conversions<V, Primes + 1>(set);
    }
}

template <typename V>
constexpr qmp::vst::ConversionKernels conversion_set() {
    qmp::vst::ConversionKernels set{};
    set_conversions<V, qmp::vst::fewest_primes>(set);
    return set;
}

}  // namespace
