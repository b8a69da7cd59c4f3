// Cosine and sine of rational parts of the circle, to the last bit that a double holds.
#pragma once

#include <cstdint>
#include <vector>

namespace qmp::fft {

struct UnitRoot {
    double cosine, sine;
};

// The angle is reduced exactly to the first octant, so the error is just that of the final rounding, with
// at most a few thousandths of a unit in the last place besides; cosine and sine are exact at multiples of
// a right angle.

// e^(2 pi i numerator / denominator), numerator < denominator < 2^60.
UnitRoot unit_root(std::uint64_t numerator, std::uint64_t denominator);

// Many roots with the same denominator, a multiple of 8: angles of the first octant are the sum of a
// coarse and a fine step, both tabulated in extended precision, which saves the trigonometric functions.
class UnitRoots {
  public:
    explicit UnitRoots(std::uint64_t denominator);
    // e^(2 pi i numerator / denominator), numerator < denominator.
    UnitRoot operator()(std::uint64_t numerator) const;

  private:
    struct Extended {
        long double cosine, sine;
    };
    std::uint64_t denominator_;
    int fine_bits_;
    std::vector<Extended> fine_, coarse_;
};

}  // namespace qmp::fft
