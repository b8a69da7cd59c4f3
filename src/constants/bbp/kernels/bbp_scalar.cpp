#include "constants/bbp/kernels/kernel_set.h"
#include "multiply/vectors/vector_scalar.h"

namespace kelvara::bbp {

constexpr Kernels kernels_scalar = kernel_set<Fused<VectorScalar>, 2>("f64v1_Native");

}  // namespace kelvara::bbp
