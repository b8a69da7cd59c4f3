// The convolution sizes of the 32-bit number-theoretic transform, in increasing capacity
// (tools/find-ntt32-primes.py).
#pragma once

#include <array>
#include <cstddef>

#include "multiply/limit_tables.h"

namespace qmp::ntt32 {

constexpr std::size_t standard_row_count = 126;
extern const std::array<LimitRow, standard_row_count> standard_rows;

// Those that take the least time; searched first.
constexpr std::size_t specialised_row_count = 129;
extern const std::array<LimitRow, specialised_row_count> specialised_rows;

}  // namespace qmp::ntt32
