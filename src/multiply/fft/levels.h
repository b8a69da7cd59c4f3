// The floating-point kernels of the instruction-set level that runs (multiply/instruction_levels.h).
#pragma once

#include <cstdint>

#include "multiply/fft/kernels/kernels.h"

namespace qmp::fft {

// A level and the small constants that its vector length needs.
struct KernelLevel {
    const Kernels* kernels;
    // For each multiplier: the twiddle factors of the innermost cut by r (base.h), and the turns of the
    // pointwise product (pointwise.h).
    const double* base_roots[multiplier_count];
    const double* base_turns[multiplier_count];
};

// The current level for transforms of r * 2^k points. Lengths too short for the widest vectors run on a
// level of two lanes, so a product has to ask with the same k throughout.
const KernelLevel& level_for(std::uint32_t k);

}  // namespace qmp::fft
