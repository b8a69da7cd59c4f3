#include "multiply/vectors/vector_avx512.h"
#include "stress/kernels/peak_kernel.h"

namespace kelvara {

constexpr PeakKernel peak_avx512 = peak_kernel<VectorAvx512>(true);

}  // namespace kelvara
