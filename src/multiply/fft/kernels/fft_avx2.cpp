#include "multiply/fft/kernels/kernel_set.h"
#include "multiply/vectors/vector_avx2.h"

namespace qmp::fft {

constexpr Kernels kernels_avx2 = kernel_set<VectorAvx2>("AVX2", false);

}  // namespace qmp::fft
