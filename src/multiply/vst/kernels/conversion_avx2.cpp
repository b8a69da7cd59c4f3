#include "multiply/vectors/vector_avx2.h"
#include "multiply/vst/kernels/conversion_set.h"

namespace qmp::vst {

constexpr ConversionKernels conversion_avx2 = conversion_set<VectorAvx2>();

}  // namespace qmp::vst
