// The constants of the conversions between operand words, residues and product bytes.
#pragma once

#include <array>
#include <cstdint>

#include "multiply/vst/kernels/kernels.h"

namespace qmp::vst {

struct ConversionConstants {
    MergeConstants merge;
    ReduceConstants reduce[most_primes];
    // The inverse of P / prime[i] modulo prime[i], below the prime. t(i) of the merge is the coefficient's
    // residue times this.
    std::array<std::uint64_t, most_primes> cofactor_inverse;
};

// For the first `primes` (6 to 9) primes of a length multiplier (1, 3, 5 or 7). Computed at first use, from
// any thread, and checked against the ranges that the kernels rely on (NUMERICS_CONVERSION.md); a prime
// table for which they do not hold ends the program.
const ConversionConstants& conversion_constants(std::uint32_t primes, std::uint32_t multiplier);

}  // namespace qmp::vst
