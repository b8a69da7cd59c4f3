#include "multiply/vectors/vector_scalar.h"
#include "multiply/vst/kernels/conversion_set.h"
#include "multiply/vst/kernels/fused.h"

namespace qmp::vst {

constexpr ConversionKernels conversion_scalar = conversion_set<Fused<VectorScalar>>();

}  // namespace qmp::vst
