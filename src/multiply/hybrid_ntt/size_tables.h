// The sizes of the hybrid transform, in increasing capacity (tools/make-hybrid-sizes.py).
#pragma once

#include <array>
#include <cstddef>

#include "multiply/hybrid_ntt/hybrid_params.h"

namespace qmp::hybrid_ntt {

constexpr std::size_t standard_row_count = 189;
extern const std::array<HybridRow, standard_row_count> standard_rows;

constexpr std::size_t specialised_row_count = 328;
extern const std::array<HybridRow, specialised_row_count> specialised_rows;

}  // namespace qmp::hybrid_ntt
