// The parameter n = 2^k of the Brent-McMillan method.
#pragma once

#include <cstdint>

namespace kelvara {

// The exponent k that a working precision of `precision` words needs: with x = precision ln(2^64) / 4 + 10,
// 2 when x <= 4, otherwise the smallest k >= 3 with 2^k >= x.
std::uint32_t brent_mcmillan_exponent(std::uint64_t precision);

}  // namespace kelvara
