// Fills the table of kernels for one vector type.
#pragma once

#include "multiply/fft/kernels/base.h"
#include "multiply/fft/kernels/kernels.h"
#include "multiply/fft/kernels/merge.h"
#include "multiply/fft/kernels/passes.h"
#include "multiply/fft/kernels/pointwise.h"
#include "multiply/fft/kernels/split.h"

namespace {

template <typename V, int Width>
constexpr void set_width_kernels(qmp::fft::Kernels& set) {
    if constexpr (Width <= qmp::fft::largest_width) {
        set.split[Width - qmp::fft::smallest_width] = split<V, Width>;
        set.merge[Width - qmp::fft::smallest_width] = merge<V, Width>;
        set_width_kernels<V, Width + 1>(set);
    }
}

template <typename V, int R>
constexpr void set_multiplier_kernels(qmp::fft::Kernels& set) {
    if constexpr (R <= 7) {
        set.forward_base[R / 2] = base_rows<V, R, false>;
        set.inverse_base[R / 2] = base_rows<V, R, true>;
        set.multiply[R / 2] = pointwise<V, R, false>;
        set.square[R / 2] = pointwise<V, R, true>;
        set_multiplier_kernels<V, R + 2>(set);
    }
}

template <typename V>
constexpr qmp::fft::Kernels kernel_set(const char* name, bool wide_passes) {
    qmp::fft::Kernels set{};
    set.name = name;
    set.log_lanes = V::lanes == 2 ? 1 : V::lanes == 4 ? 2 : 3;
    set.wide_passes = wide_passes;
    set.forward4 = pass4<V, false>;
    set.inverse4 = pass4<V, true>;
    set.forward8 = pass8<V, false>;
    set.inverse8 = pass8<V, true>;
    set.half_forward4 = half_pass4<V>;
    set.half_forward8 = half_pass8<V>;
    set_multiplier_kernels<V, 1>(set);
    set_width_kernels<V, qmp::fft::smallest_width>(set);
    return set;
}

}  // namespace
