// The roots of unity of one set of primes, built on first use and kept.
#pragma once

#include <cstddef>

#include "multiply/ntt32/kernels/kernels.h"
#include "multiply/ntt32/prime_table.h"

namespace qmp::ntt32 {

struct RootTables {
    Roots forward[primes_per_set];
    Roots inverse[primes_per_set];  // of the inverses
    Modulus moduli[primes_per_set];
};

// For kernels with 2^log_lanes lanes: 0, 3 or 4.
const RootTables& root_tables(std::size_t set, int log_lanes);

}  // namespace qmp::ntt32
