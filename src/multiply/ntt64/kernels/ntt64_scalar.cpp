#include "multiply/ntt64/kernels/kernel_set.h"

namespace qmp::ntt64 {

constexpr Kernels kernels_scalar = kernel_set<WordsScalar>();

}  // namespace qmp::ntt64
