// The safety check after every inverse transform modulo primes: no coefficient may reach its bound.
#pragma once

#include <cstdint>

namespace qmp {

// `found`: the largest coefficient, in units of the caller's choice; `limit`: what none of them reaches in a
// correct product. When one has, throws ConvolutionFailedException "Coefficient is too large." in the
// caller's name, after the warning "The FPU Control Word has been corrupted." if the calling thread's
// floating-point control state is not the one that a program starts with.
void check_coefficients(const char* function, std::uint64_t limit, std::uint64_t found);

// Whether the calling thread rounds to nearest, masks all floating-point exceptions, keeps subnormal numbers,
// and has the x87 precision of a system's start (53 or 64 bits).
bool floating_point_state_is_default();

}  // namespace qmp
