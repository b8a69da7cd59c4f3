#include "multiply/fft/levels.h"

#include <array>
#include <atomic>
#include <string>

#include "errors/exception.h"
#include "multiply/fft/unit_roots.h"
#include "platform/processor_features.h"

namespace qmp::fft {
namespace {

struct Candidate {
    const Kernels* kernels;
    bool (*supported)(const ProcessorFeatures&);
};

// Best first. The one list of levels. A level needs all that its file is compiled for
// (cmake/KernelFlags.cmake).
constexpr Candidate candidates[] = {
    {&kernels_avx512,
     [](const ProcessorFeatures& f) {
         return f.os_avx512 && f.avx512f && f.avx512dq && f.avx512bw && f.avx512vl && f.avx2 && f.fma3 &&
                f.bmi2 && f.adx;
     }},
    {&kernels_avx2,
     [](const ProcessorFeatures& f) { return f.os_avx && f.avx2 && f.fma3 && f.bmi1 && f.bmi2; }},
    {&kernels_sse2, [](const ProcessorFeatures&) { return true; }},
    {&kernels_scalar, [](const ProcessorFeatures&) { return true; }},
};
constexpr std::size_t candidate_count = sizeof candidates / sizeof candidates[0];

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

const KernelLevel& prepared(std::size_t index) {
    static const std::array<PreparedLevel, candidate_count> levels = {
        PreparedLevel(*candidates[0].kernels), PreparedLevel(*candidates[1].kernels),
        PreparedLevel(*candidates[2].kernels), PreparedLevel(*candidates[3].kernels)};
    return levels[index].level();
}

const KernelLevel* best_level() {
    for (std::size_t i = 0; i < candidate_count; ++i) {
        if (level_supported(i)) return &prepared(i);
    }
    return &prepared(candidate_count - 1);
}

std::atomic<const KernelLevel*>& current_level() {
    static std::atomic<const KernelLevel*> level = best_level();
    return level;
}

// Shortest transforms of the levels: 2^(k-1) complex numbers fill the square of the lanes.
constexpr std::uint32_t shortest_wide_exponent = 7;

}  // namespace

const KernelLevel& level_for(std::uint32_t k) {
    const KernelLevel& level = *current_level().load(std::memory_order_relaxed);
    if (k >= shortest_wide_exponent || level.kernels->log_lanes == 1) return level;
    return prepared(candidate_count - 2);
}

std::size_t level_count() {
    return candidate_count;
}

const char* level_name(std::size_t index) {
    return candidates[index].kernels->name;
}

bool level_supported(std::size_t index) {
    return candidates[index].supported(processor_features());
}

void force_level(std::string_view name) {
    if (name.empty()) {
        current_level() = best_level();
        return;
    }
    for (std::size_t i = 0; i < candidate_count; ++i) {
        if (name != level_name(i)) continue;
        if (!level_supported(i)) {
            throw InvalidParametersException("qmp::fft::force_level()",
                                             "This processor does not run " + std::string(name) + ".");
        }
        current_level() = &prepared(i);
        return;
    }
    throw InvalidParametersException("qmp::fft::force_level()", "No such level: " + std::string(name));
}

}  // namespace qmp::fft
