// The factors of the transform's first layers, those that run down columns: the part of a computation's
// twiddle set that products above the floating-point FFT's range need.
//
// A transform of m * 2^e points is a matrix of m * 2^k rows; the columns' trees are m subtrees of k layers,
// whose factors depend on m and on the form (cyclic or negacyclic), not on e. One table serves every k up to
// its own.
#pragma once

#include <array>
#include <cstdint>

#include "multiply/vst/kernels/transform_kernels.h"
#include "multiply/vst/prime_table.h"
#include "platform/parallel/parallel_context.h"

namespace qmp::vst {

class ColumnTables {
  public:
    // Of subtrees of up to `layers` layers.
    static std::uint64_t doubles(std::uint32_t multiplier, int layers);

    ColumnTables() = default;
    // `memory` holds doubles(multiplier, layers), 64-byte aligned, and outlives the tables.
    ColumnTables(std::uint32_t multiplier, int layers, double* memory, ParallelContext parallel);

    // -1 when there is no table.
    int layers() const { return layers_; }
    // prime below most_primes, subtree below the multiplier.
    NodeFactors factors(std::uint32_t prime, bool negacyclic, std::uint32_t subtree, bool inverse) const;

  private:
    double* at(std::uint32_t prime, bool negacyclic, std::uint32_t subtree, bool inverse) const;

    std::uint32_t multiplier_ = 0;
    int layers_ = -1;
    double* memory_ = nullptr;
};

// The angle of subtree s at the top of its tree is numerator / denominator of the circle.
struct SubtreeAngle {
    std::uint64_t numerator;
    std::uint64_t denominator;

    SubtreeAngle(std::uint32_t multiplier, std::uint32_t subtree, bool negacyclic)
        : numerator(negacyclic ? 2 * std::uint64_t{subtree} + multiplier : subtree),
          denominator(negacyclic ? 2 * std::uint64_t{multiplier} : multiplier) {}
};

}  // namespace qmp::vst
