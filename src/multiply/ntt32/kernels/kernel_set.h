// Instantiates the family for one vector type.
#pragma once

#include "multiply/ntt32/kernels/passes.h"
#include "multiply/ntt32/kernels/pointwise.h"
#include "multiply/ntt32/kernels/recombine.h"
#include "multiply/ntt32/kernels/split.h"

namespace {

template <typename V>
constexpr qmp::ntt32::Kernels kernel_set() {
    return {
        V::log_lanes,
        {split_points<V, 4>, split_points<V, 5>, split_points<V, 6>, split_points<V, 7>, split_points<V, 8>,
         split_points<V, 9>},
        forward2<V>,
        forward4<V>,
        inverse2<V>,
        inverse4<V>,
        whole_block<V, false>,
        whole_block<V, true>,
        {pointwise<V, 1>, pointwise<V, 3>, pointwise<V, 5>, pointwise<V, 7>},
        {recombine_points<V, 4>, recombine_points<V, 5>, recombine_points<V, 6>, recombine_points<V, 7>,
         recombine_points<V, 8>, recombine_points<V, 9>},
    };
}

}  // namespace
