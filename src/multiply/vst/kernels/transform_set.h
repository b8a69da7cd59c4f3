// Fills the table of the transform's kernels for one vector type.
#pragma once

#include "multiply/vst/kernels/leaf.h"
#include "multiply/vst/kernels/outer.h"
#include "multiply/vst/kernels/transform_kernels.h"

namespace {

template <typename V>
constexpr qmp::vst::TransformKernels transform_set() {
    qmp::vst::TransformKernels set{};
    set.log_lanes = log_lanes<V>;
    set.forward_layers = forward_layers<V>;
    set.inverse_layers = inverse_layers<V>;
    set.forward_outer[0] = no_outer<V>;
    set.forward_outer[1] = forward_outer<V, 3>;
    set.forward_outer[2] = forward_outer<V, 5>;
    set.forward_outer[3] = forward_outer<V, 7>;
    set.inverse_outer[0] = no_outer<V>;
    set.inverse_outer[1] = inverse_outer<V, 3>;
    set.inverse_outer[2] = inverse_outer<V, 5>;
    set.inverse_outer[3] = inverse_outer<V, 7>;
    set.square_chain = square_chain<V>;
    set.scale = scale<V>;
    set.leaf_table = leaf_table<V>;
    set.leaf_forward = leaf_forward<V>;
    set.leaf_inverse = leaf_inverse<V>;
    set.pointwise = pointwise<V>;
    return set;
}

}  // namespace
