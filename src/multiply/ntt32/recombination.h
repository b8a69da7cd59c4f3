// The constants of the Chinese remainder theorem for the first primes of a set.
#pragma once

#include <cstddef>
#include <cstdint>

#include "multiply/ntt32/kernels/kernels.h"
#include "multiply/ntt32/prime_table.h"

namespace qmp::ntt32 {

struct Recombination {
    // As in RecombineJob.
    std::uint32_t cofactors[most_primes][most_digits];
    std::uint32_t reciprocals[most_primes];
    std::uint32_t complement[most_digits];
    std::uint32_t inverse_cofactors[most_primes];    // of P / p(i), modulo p(i)
    Factor chunk_weights[most_primes][most_chunks];  // as in SplitJob
    // The longest convolution, in points of 16 (primes - 1) bits, whose coefficients stay below
    // P (1 - 2^-20).
    std::uint64_t most_points;
};

// Built on first use and kept. 4 to 9 primes.
const Recombination& recombination(std::size_t set, std::uint32_t primes);

}  // namespace qmp::ntt32
