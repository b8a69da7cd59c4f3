#include "multiply/fft/kernels/kernel_set.h"
#include "multiply/vectors/vector_sse2.h"

namespace qmp::fft {

constexpr Kernels kernels_sse2 = kernel_set<VectorSse2>("SSE2", false);

}  // namespace qmp::fft
