#include "multiply/vectors/vector_scalar.h"
#include "multiply/vst/kernels/fused.h"
#include "multiply/vst/kernels/transform_set.h"

namespace qmp::vst {

constexpr TransformKernels transform_scalar = transform_set<Fused<VectorScalar>>();

}  // namespace qmp::vst
