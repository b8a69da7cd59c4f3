#include "multiply/vectors/vector_avx2.h"
#include "stress/kernels/peak_kernel.h"

namespace kelvara {

constexpr PeakKernel peak_avx2 = peak_kernel<VectorAvx2>(true);

}  // namespace kelvara
