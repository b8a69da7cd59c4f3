// The primes of the 32-bit number-theoretic transform.
//
// For each of four powers of two 2^e the nine largest primes below 2^31 that are 1 modulo it
// (tools/find-ntt32-primes.py). A size of n primes uses the first n of the first set that has roots of unity
// for its power of two: the smaller e, the larger the primes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qmp::ntt32 {

struct Prime {
    std::uint32_t value;
    std::uint32_t primitive_root;  // the least
};

constexpr std::size_t primes_per_set = 9;
constexpr std::size_t set_count = 4;
constexpr std::uint32_t set_exponents[set_count] = {20, 22, 23, 24};

using PrimeTable = std::array<std::array<Prime, primes_per_set>, set_count>;
extern const PrimeTable prime_table;

// The set for rows of 2^exponent residues, exponent <= 24.
constexpr std::size_t prime_set(std::uint32_t exponent) {
    std::size_t set = 0;
    while (set_exponents[set] < exponent) ++set;
    return set;
}

}  // namespace qmp::ntt32
