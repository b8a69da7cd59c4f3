#include "multiply/ntt32/kernels/kernel_set.h"
#include "multiply/vectors/lanes32_avx2.h"

namespace qmp::ntt32 {

constexpr Kernels kernels_avx2 = kernel_set<Lanes32Avx2>();

}  // namespace qmp::ntt32
