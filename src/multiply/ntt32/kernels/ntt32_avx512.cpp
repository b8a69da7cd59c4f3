// GCC 12 takes the undefined operands inside its own intrinsics for uninitialised variables.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include "multiply/ntt32/kernels/kernel_set.h"
#include "multiply/vectors/lanes32_avx512.h"

namespace qmp::ntt32 {

constexpr Kernels kernels_avx512 = kernel_set<Lanes32Avx512>();

}  // namespace qmp::ntt32
