// Which kernels run.
//
// The best level that the processor and the system support is chosen once. Products are exact integers,
// so every level gives the same words; only tests and benchmarks have reason to choose another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

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

// The level for transforms of r * 2^k points. Lengths too short for the widest vectors run on a level of
// two lanes, so a product has to ask with the same k throughout.
const KernelLevel& level_for(std::uint32_t k);

// All levels of the program, best first: name(i) for i below the count, and whether this machine runs it.
std::size_t level_count();
const char* level_name(std::size_t index);
bool level_supported(std::size_t index);

// Makes a level the one that runs; not while products are under way. InvalidParametersException when
// there is no such level or this machine does not run it. An empty name goes back to the best one.
void force_level(std::string_view name);

}  // namespace qmp::fft
