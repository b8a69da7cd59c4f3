// How fast a core can be at multiply-adds: chains of them that do not wait for each other.
#pragma once

#include <cstdint>

namespace kelvara {

// An instruction set's.
struct PeakKernel {
    // Runs so many rounds; what it returns depends on every one of them.
    double (*run)(std::uint64_t rounds);
    // Of a round, in double precision; a fused multiply-add is one.
    double operations;
};

extern const PeakKernel peak_avx512;
extern const PeakKernel peak_avx2;
extern const PeakKernel peak_fma4;
extern const PeakKernel peak_sse2;
extern const PeakKernel peak_scalar;

// Of the level that runs (multiply/instruction_levels.h).
const PeakKernel& current_peak_kernel();

}  // namespace kelvara
