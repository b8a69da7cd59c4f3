#include "multiply/vectors/vector_fma4.h"
#include "multiply/vst/kernels/conversion_set.h"

namespace qmp::vst {

constexpr ConversionKernels conversion_fma4 = conversion_set<VectorFma4>();

}  // namespace qmp::vst
