#include "multiply/vectors/vector_scalar.h"
#include "stress/kernels/peak_kernel.h"

namespace kelvara {

constexpr PeakKernel peak_scalar = peak_kernel<VectorScalar>(false);

}  // namespace kelvara
