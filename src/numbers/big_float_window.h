// Which words a BigFloat operation of a given precision keeps.
#pragma once

#include <algorithm>
#include <cstdint>

#include "numbers/big_float.h"

namespace qmp {

// min(p + 2, length), for any p.
constexpr std::uint64_t kept_words(std::uint64_t p, std::uint64_t length) {
    return p >= length ? length : std::min(p + big_float_extra_precision, length);
}

// max(top - p - 1, lowest), for any p; lowest <= top.
constexpr std::int64_t window_bottom(std::int64_t top, std::uint64_t p, std::int64_t lowest) {
    if (p >= static_cast<std::uint64_t>(top - lowest)) return lowest;
    return top - static_cast<std::int64_t>(p + 1);
}

// Drops top zero words; an empty number becomes zero.
inline void strip_top_zeros(BigFloat& number) {
    while (number.L > 0 && number.T[number.L - 1] == 0) --number.L;
    if (number.L == 0) number.set_zero();
}

}  // namespace qmp
