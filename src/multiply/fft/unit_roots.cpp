#include "multiply/fft/unit_roots.h"

#include <bit>
#include <cmath>
#include <limits>

namespace qmp::fft {
namespace {

static_assert(std::numeric_limits<long double>::digits >= 64);

constexpr long double two_pi = 6.283185307179586476925286766559005768L;

// e^(2 pi i n / d) from the root of the first octant's angle that `octant_root` gives.
template <typename OctantRoot>
UnitRoot reduce(std::uint64_t n, std::uint64_t d, OctantRoot octant_root) {
    // Eighths of the circle, exactly: 8 n / d.
    const std::uint64_t octant = 8 * n / d;
    const std::uint64_t rest = 8 * n % d;  // in eighths of a denominator's step
    const bool mirrored = octant & 1;      // measured back from the octant's upper end
    UnitRoot root = octant_root(mirrored ? d - rest : rest);
    if (((octant + 1) / 2) & 1) root = {root.sine, root.cosine};
    if (octant >= 2 && octant < 6) root.cosine = -root.cosine;
    if (octant >= 4) root.sine = -root.sine;
    return root;
}

}  // namespace

UnitRoot unit_root(std::uint64_t numerator, std::uint64_t denominator) {
    return reduce(numerator, denominator, [=](std::uint64_t eighths) {
        const long double angle =
            two_pi * (static_cast<long double>(eighths) / (8 * static_cast<long double>(denominator)));
        return UnitRoot{static_cast<double>(std::cos(angle)), static_cast<double>(std::sin(angle))};
    });
}

UnitRoots::UnitRoots(std::uint64_t denominator) : denominator_(denominator) {
    const std::uint64_t octant = denominator / 8;
    fine_bits_ = std::bit_width(octant) / 2;
    const auto fill = [&](std::vector<Extended>& table, std::uint64_t count, std::uint64_t step) {
        table.resize(count);
        for (std::uint64_t i = 0; i < count; ++i) {
            const long double angle =
                two_pi * (static_cast<long double>(i * step) / static_cast<long double>(denominator));
            table[i] = {std::cos(angle), std::sin(angle)};
        }
    };
    fill(fine_, std::uint64_t{1} << fine_bits_, 1);
    fill(coarse_, (octant >> fine_bits_) + 1, std::uint64_t{1} << fine_bits_);
}

UnitRoot UnitRoots::operator()(std::uint64_t numerator) const {
    return reduce(numerator, denominator_, [this](std::uint64_t eighths) {
        // The denominator is a multiple of 8, so the rest is a whole number of steps.
        const std::uint64_t steps = eighths / 8;
        const Extended& a = coarse_[steps >> fine_bits_];
        const Extended& b = fine_[steps & ((std::uint64_t{1} << fine_bits_) - 1)];
        return UnitRoot{static_cast<double>(a.cosine * b.cosine - a.sine * b.sine),
                        static_cast<double>(a.sine * b.cosine + a.cosine * b.sine)};
    });
}

}  // namespace qmp::fft
