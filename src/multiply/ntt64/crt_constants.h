// What recovers a coefficient from its residues: with M the product of the primes p and M_p = M / p, the sum
// over the primes of (residue * factor modulo p) * M_p, less the multiple of M nearest to it.
#pragma once

#include <cstdint>

#include "multiply/ntt64/kernels/kernels.h"
#include "multiply/ntt64/transform.h"

namespace qmp::ntt64 {

struct CrtConstants {
    std::uint64_t primes[most_primes];
    // The inverse of M_p, of the number of points, and of what products were divided by.
    Twiddle factors[most_primes];
    std::uint64_t cofactors[most_primes][most_primes];  // M_p: primes - 1 words
    std::uint64_t product[most_primes];                 // M: `primes` words
    double inverse_top;                                 // of M's top word with what is below it
};

CrtConstants form_crt_constants(const Plan& plan);

}  // namespace qmp::ntt64
