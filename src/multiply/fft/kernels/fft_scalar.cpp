#include "multiply/fft/kernels/kernel_set.h"
#include "multiply/vectors/vector_scalar.h"

namespace qmp::fft {

constexpr Kernels kernels_scalar = kernel_set<VectorScalar>("scalar", false);

}  // namespace qmp::fft
