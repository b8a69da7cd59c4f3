#include "multiply/vectors/vector_fma4.h"
#include "multiply/vst/kernels/transform_set.h"

namespace qmp::vst {

constexpr TransformKernels transform_fma4 = transform_set<VectorFma4>();

}  // namespace qmp::vst
