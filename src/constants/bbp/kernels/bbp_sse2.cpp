#include "constants/bbp/kernels/kernel_set.h"
#include "multiply/vectors/vector_sse2.h"

namespace kelvara::bbp {

constexpr Kernels kernels_sse2 = kernel_set<Fused<VectorSse2>, 2>("f64v1_SSE2");

}  // namespace kelvara::bbp
