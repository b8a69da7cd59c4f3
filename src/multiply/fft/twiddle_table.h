// The twiddle factors of the floating-point transforms of lengths r * 2^j, for one multiplier r.
//
// Nested level blocks without overlap: level j (5 <= j <= k + 1) is the block at offset
// 2 * r * 2^(j-2) doubles; the whole table takes 2 * r * 2^k doubles. k + 1 < 5 gives scale factors only.
//
// A level holds, for every pair of indices i, i + 1 below r * 2^(j-4), four groups of four doubles: the two
// cosines and the two sines of m * i * theta, theta = 2 pi / (r * 2^j), for the multipliers m = 0, 8, 4, 12.
// Level j serves the pass that cuts r * 2^(j-2) complex numbers into quarters.
//
// Scale factors: entries 0 to 3 are 1/r, 1/(2r), 1/(4r), 1/(8r); entry 64 + j of a built level is
// 1/(r * 2^(j-1)). All others are 0.
#pragma once

#include <array>
#include <cstdint>

#include "platform/parallel/parallel_context.h"

namespace qmp::fft {

class TwiddleTable {
  public:
    TwiddleTable() = default;
    // Builds into memory[0 .. doubles(r, k)), 64-byte aligned.
    TwiddleTable(std::uint32_t r, std::uint32_t k, double* memory, ParallelContext parallel);

    // Table memory in doubles.
    static std::uint64_t doubles(std::uint32_t r, std::uint32_t k) { return (std::uint64_t{2} * r) << k; }

    std::uint32_t multiplier() const { return r_; }
    // Largest exponent: transforms of up to r * 2^k points.
    std::uint32_t exponent() const { return k_; }
    const double* level(std::uint32_t j) const { return levels_[j]; }
    double scale(std::uint32_t index) const { return scales_[index]; }

  private:
    double* memory_ = nullptr;
    std::array<const double*, 64> levels_{};
    std::array<double, 128> scales_{};
    std::uint32_t r_ = 0;
    std::uint32_t k_ = 0;
};

}  // namespace qmp::fft
