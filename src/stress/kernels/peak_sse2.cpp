#include "multiply/vectors/vector_sse2.h"
#include "stress/kernels/peak_kernel.h"

namespace kelvara {

constexpr PeakKernel peak_sse2 = peak_kernel<VectorSse2>(false);

}  // namespace kelvara
