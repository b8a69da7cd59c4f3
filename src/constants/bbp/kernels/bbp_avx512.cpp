// GCC 12 takes the deliberately undefined pass-through operands of its own AVX-512 intrinsics for errors.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include "constants/bbp/kernels/kernel_set.h"
#include "multiply/vectors/vector_avx512.h"

namespace kelvara::bbp {

constexpr Kernels kernels_avx512 = kernel_set<VectorAvx512, 6>("f64v1_AVX512");

}  // namespace kelvara::bbp
