#include "multiply/vectors/vector_sse2.h"
#include "multiply/vst/kernels/conversion_set.h"
#include "multiply/vst/kernels/fused.h"

namespace qmp::vst {

constexpr ConversionKernels conversion_sse2 = conversion_set<Fused<VectorSse2>>();

}  // namespace qmp::vst
