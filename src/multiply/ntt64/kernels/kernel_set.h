// Fills the table of kernels for one vector type.
#pragma once

#include "multiply/ntt64/kernels/words_scalar.h"
// The rows' constants are formed one by one on every level.
#include "multiply/ntt64/kernels/columns.h"
#include "multiply/ntt64/kernels/rows.h"

namespace {

template <typename V>
constexpr qmp::ntt64::Kernels kernel_set() {
    return {forward_columns<V>, forward_rows<V>, inverse_rows<V>, inverse_columns<V>};
}

}  // namespace
