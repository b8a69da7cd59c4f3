// GCC 12 takes the deliberately undefined pass-through operands of its own AVX-512 intrinsics for errors.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"

#include "multiply/vectors/vector_avx512.h"
#include "multiply/vst/kernels/conversion_set.h"

namespace qmp::vst {

constexpr ConversionKernels conversion_avx512 = conversion_set<VectorAvx512>();

}  // namespace qmp::vst
