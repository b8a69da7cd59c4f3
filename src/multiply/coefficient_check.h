// The last check of every product by transforms modulo primes: no coefficient may be larger than the operands
// can make it. A wrong residue, from a processor or a memory that fails, makes a coefficient that is.
#pragma once

#include <cstdint>

namespace qmp {

// Throws ConvolutionFailedException when `found`, the largest coefficient in units that the caller chooses,
// is not below `limit`. If the processor's floating-point control is not as the system set it, a warning says
// so first.
void check_coefficients(const char* function, std::uint64_t limit, std::uint64_t found);

}  // namespace qmp
