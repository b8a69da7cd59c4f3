// GCC 12 takes the deliberately undefined pass-through operands of its own AVX-512 intrinsics for errors.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"

#include "multiply/fft/kernels/kernel_set.h"
#include "multiply/vectors/vector_avx512.h"

namespace qmp::fft {

constexpr Kernels kernels_avx512 = kernel_set<VectorAvx512>("AVX-512", true);

}  // namespace qmp::fft
