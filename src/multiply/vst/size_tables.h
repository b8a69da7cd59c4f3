// The convolution sizes of the vector transform, in increasing capacity.
#pragma once

#include <array>
#include <cstddef>

#include "multiply/limit_tables.h"

namespace qmp::vst {

constexpr std::size_t standard_row_count = 312;
extern const std::array<LimitRow, standard_row_count> standard_rows;

// Tuned for the processor of this build; searched first.
constexpr std::size_t specialised_row_count = 127;
extern const std::array<LimitRow, specialised_row_count> specialised_rows;

}  // namespace qmp::vst
