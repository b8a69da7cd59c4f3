// Roots of unity modulo the primes of the vector transform, and what is built from them once.
//
// e(t) is the root of unity for the fraction t of the circle: g^((p - 1) t), g the primitive root of the
// table. Factors are doubles, balanced: at most half the prime.
#pragma once

#include <cstdint>

#include "multiply/vst/kernels/transform_kernels.h"
#include "multiply/vst/prime_table.h"

namespace qmp::vst {

// a * b modulo p for a, b < p < 2^50.
std::uint64_t multiply_modulo(std::uint64_t a, std::uint64_t b, std::uint64_t p);
std::uint64_t power_modulo(std::uint64_t base, std::uint64_t exponent, std::uint64_t p);
std::uint64_t inverse_modulo(std::uint64_t a, std::uint64_t p);
// x < p as the number of least magnitude.
double balanced(std::uint64_t x, std::uint64_t p);

// e(numerator / denominator); the denominator divides p - 1.
std::uint64_t root_of_unity(const Prime& prime, std::uint64_t numerator, std::uint64_t denominator);

constexpr std::uint32_t index_of(std::uint32_t multiplier) {
    return multiplier / 2;
}

// What a prime of one multiplier needs, whatever the transform's length.
struct PrimeConstants {
    PrimeModulus modulus;
    OuterFactors outer;  // of the multiplier; unused for 1
    // At k: e(2^-k) and its inverse, and e(2^-k / multiplier) and its inverse.
    std::uint64_t root[42];
    std::uint64_t inverse_root[42];
    std::uint64_t outer_root[42];
    std::uint64_t inverse_outer_root[42];
};

// Built once and checked: the primes' order, and that the roots have the orders that they should have.
// multiplier 1, 3, 5 or 7; prime below most_primes.
const PrimeConstants& prime_constants(std::uint32_t multiplier, std::uint32_t prime);
// For kernels of this many lanes.
LeafBase leaf_base(std::uint32_t multiplier, std::uint32_t prime, int log_lanes, bool inverse);

}  // namespace qmp::vst
