// The twiddle factors of the floating-point transforms of lengths r * 2^j, for one multiplier r.
//
// Nested level blocks without overlap: level j (5 <= j <= k + 1) is the block at offset
// 2 * r * 2^(j-2) doubles; the whole table takes 2 * r * 2^k doubles. k + 1 < 5 gives scale factors only.
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
