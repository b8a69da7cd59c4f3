#include "constants/bbp/kernels/kernel_set.h"
#include "multiply/vectors/vector_fma4.h"

namespace kelvara::bbp {

constexpr Kernels kernels_fma4 = kernel_set<VectorFma4, 4>("f64v1_XOP");

}  // namespace kelvara::bbp
