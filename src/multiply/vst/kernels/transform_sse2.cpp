#include "multiply/vectors/vector_sse2.h"
#include "multiply/vst/kernels/fused.h"
#include "multiply/vst/kernels/transform_set.h"

namespace qmp::vst {

constexpr TransformKernels transform_sse2 = transform_set<Fused<VectorSse2>>();

}  // namespace qmp::vst
