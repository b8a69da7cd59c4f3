// The primes of the 64-bit number-theoretic transform.
//
// For each number of primes and each length multiplier m a set of the largest primes between 2^62 and 2^63
// that are 1 modulo m * 2^exponent: the set transforms m * 2^exponent points and less, half as many in the
// negacyclic form. The exponent is the largest for which the primes' product holds every coefficient of that
// length with its sign: it exceeds 2 * points * 2^(64 (primes - 1)) (tools/find-transform-primes.py;
// NUMERICS.md).
#pragma once

#include <array>
#include <cstdint>

namespace qmp::ntt64 {

struct Prime {
    std::uint64_t value;
    std::uint64_t primitive_root;  // the least
};

constexpr std::uint32_t fewest_primes = 5;
constexpr std::uint32_t most_primes = 9;
constexpr std::uint32_t multiplier_count = 4;  // 1, 3, 5, 7

struct PrimeSet {
    std::uint32_t exponent;
    std::array<Prime, most_primes> primes;  // zeros behind the last
};

// By the number of primes less fewest_primes, and multiplier / 2.
using PrimeTable = std::array<std::array<PrimeSet, multiplier_count>, most_primes - fewest_primes + 1>;
extern const PrimeTable prime_table;

inline const PrimeSet& prime_set(std::uint32_t primes, std::uint32_t multiplier) {
    return prime_table[primes - fewest_primes][multiplier / 2];
}

}  // namespace qmp::ntt64
