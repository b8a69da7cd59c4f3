// The convolution sizes of the 64-bit number-theoretic transform, in increasing capacity.
#pragma once

#include <array>
#include <cstddef>

#include "multiply/limit_tables.h"

namespace qmp::ntt64 {

constexpr std::size_t standard_row_count = 424;
extern const std::array<LimitRow, standard_row_count> standard_rows;

// Tuned for the processor of this build; searched first.
constexpr std::size_t specialised_row_count = 138;
extern const std::array<LimitRow, specialised_row_count> specialised_rows;

}  // namespace qmp::ntt64
