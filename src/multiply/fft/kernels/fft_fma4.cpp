#include "multiply/fft/kernels/kernel_set.h"
#include "multiply/vectors/vector_fma4.h"

namespace qmp::fft {

constexpr Kernels kernels_fma4 = kernel_set<VectorFma4>("FMA4", false);

}  // namespace qmp::fft
