#include "multiply/ntt32/kernels/kernel_set.h"
#include "multiply/vectors/lanes32_scalar.h"

namespace qmp::ntt32 {

constexpr Kernels kernels_scalar = kernel_set<Lanes32Scalar>();

}  // namespace qmp::ntt32
