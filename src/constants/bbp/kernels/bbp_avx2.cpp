#include "constants/bbp/kernels/kernel_set.h"
#include "multiply/vectors/vector_avx2.h"

namespace kelvara::bbp {

constexpr Kernels kernels_avx2 = kernel_set<VectorAvx2, 6>("f64v1_AVX2");

}  // namespace kelvara::bbp
