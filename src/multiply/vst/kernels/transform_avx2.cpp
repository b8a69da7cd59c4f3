#include "multiply/vectors/vector_avx2.h"
#include "multiply/vst/kernels/transform_set.h"

namespace qmp::vst {

constexpr TransformKernels transform_avx2 = transform_set<VectorAvx2>();

}  // namespace qmp::vst
