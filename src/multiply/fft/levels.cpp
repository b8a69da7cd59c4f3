#include "multiply/fft/levels.h"

#include <array>
#include <cstddef>

#include "multiply/fft/unit_roots.h"
#include "multiply/instruction_levels.h"

namespace qmp::fft {
namespace {

// In the order of InstructionLevel.
constexpr const Kernels* tables[instruction_level_count] = {&kernels_avx512, &kernels_avx2, &kernels_fma4,
                                                            &kernels_sse2, &kernels_scalar};

std::uint64_t reversed(std::uint64_t x, int bits) {
    std::uint64_t r = 0;
    for (int i = 0; i < bits; ++i) r |= ((x >> i) & 1) << (bits - 1 - i);
    return r;
}

// One level with its constants, built from the vector length.
class PreparedLevel {
  public:
    explicit PreparedLevel(const Kernels& kernels) {
        level_.kernels = &kernels;
        for (std::uint64_t i = 0; i < multiplier_count; ++i) {
            level_.base_roots[i] = next_;
            add_base_roots(2 * i + 1);
            level_.base_turns[i] = next_;
            add_base_turns(2 * i + 1);
        }
    }
    PreparedLevel(const PreparedLevel&) = delete;
    const KernelLevel& level() const { return level_; }

  private:
    // One vector of roots: numerator(l) / denominator of the circle for lane l, times `factor`.
    template <typename Numerator>
    void add_vector(std::uint64_t denominator, double factor, Numerator numerator) {
        const std::uint64_t lanes = static_cast<std::uint64_t>(level_.kernels->lanes());
        for (std::uint64_t l = 0; l < lanes; ++l) {
            const UnitRoot root = unit_root(numerator(l), denominator);
            next_[l] = factor * root.cosine;
            next_[l + lanes] = factor * root.sine;
        }
        next_ += 2 * lanes;
    }
    void add_base_roots(std::uint64_t r) {
        const std::uint64_t lanes = static_cast<std::uint64_t>(level_.kernels->lanes());
        for (std::uint64_t s = 1; s < r; ++s) {
            add_vector(r * lanes, 1.0, [=](std::uint64_t l) { return s * l; });
        }
    }
    void add_base_turns(std::uint64_t r) {
        const std::uint64_t lanes = static_cast<std::uint64_t>(level_.kernels->lanes());
        const int bits = level_.kernels->log_lanes;
        for (std::uint64_t s = 0; s < r; ++s) {
            add_vector(r * lanes * lanes, 0.25,
                       [=](std::uint64_t l) { return reversed(l, bits) + s * lanes; });
        }
    }

    // r - 1 and r vectors for each multiplier r
    static constexpr std::size_t vectors = (0 + 1) + (2 + 3) + (4 + 5) + (6 + 7);
    static constexpr std::size_t most_lanes = 8;
    std::array<double, vectors * 2 * most_lanes> storage_{};
    double* next_ = storage_.data();
    KernelLevel level_{};
};

const KernelLevel& prepared(InstructionLevel level) {
    static const PreparedLevel levels[] = {PreparedLevel(*tables[0]), PreparedLevel(*tables[1]),
                                           PreparedLevel(*tables[2]), PreparedLevel(*tables[3]),
                                           PreparedLevel(*tables[4])};
    static_assert(sizeof levels / sizeof levels[0] == instruction_level_count);
    return levels[static_cast<std::size_t>(level)].level();
}

// Shortest transforms of the levels: 2^(k-1) complex numbers fill the square of the lanes.
constexpr std::uint32_t shortest_wide_exponent = 7;

}  // namespace

const KernelLevel& level_for(std::uint32_t k) {
    const KernelLevel& level = prepared(current_level());
    if (k >= shortest_wide_exponent || level.kernels->log_lanes == 1) return level;
    return prepared(InstructionLevel::sse2);
}

}  // namespace qmp::fft
