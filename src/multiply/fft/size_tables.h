// The convolution sizes on offer.
#pragma once

#include <array>
#include <cstddef>

#include "multiply/fft/fft_params.h"

namespace qmp::fft {

// The sizes that products choose from, in increasing capacity. The point sizes fall as the length grows,
// deliberately with gaps and irregularities.
constexpr std::size_t size_table_rows = 95;
extern const std::array<FftParams, size_table_rows> size_table;

// Every capacity that can be rebuilt from a stored size, in increasing order: all lengths r * 2^k with
// r = 1, 3, 5 and all point sizes from 9 bits to the widest that the size table has at twice that length
// (so the points are safe with a bit to spare). A capacity that several lengths reach has the shortest.
constexpr std::size_t exact_size_table_rows = 261;
extern const std::array<FftParams, exact_size_table_rows> exact_size_table;

}  // namespace qmp::fft
