#include "multiply/vectors/vector_fma4.h"
#include "stress/kernels/peak_kernel.h"

namespace kelvara {

constexpr PeakKernel peak_fma4 = peak_kernel<VectorFma4>(true);

}  // namespace kelvara
