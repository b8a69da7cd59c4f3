// The primes of the vector transform.
//
// For each length multiplier m = 1, 3, 5, 7 the nine largest primes below 2^50 that are 1 modulo m * 2^e,
// e large enough for the longest transforms of that multiplier (tools/find-transform-primes.py). A
// configuration of n primes uses the first n of its multiplier.
#pragma once

#include <array>
#include <cstdint>

namespace qmp::vst {

struct Prime {
    std::uint64_t value;
    std::uint64_t primitive_root;  // the least
};

constexpr std::uint32_t most_primes = 9;
constexpr std::uint32_t fewest_primes = 6;
constexpr std::uint32_t multiplier_count = 4;
constexpr std::uint32_t multipliers[multiplier_count] = {1, 3, 5, 7};
// log2 of the power of two that divides value - 1, at least, by multiplier / 2
constexpr std::uint32_t prime_exponents[multiplier_count] = {41, 40, 39, 38};

using PrimeTable = std::array<std::array<Prime, most_primes>, multiplier_count>;  // by multiplier / 2
extern const PrimeTable prime_table;

}  // namespace qmp::vst
