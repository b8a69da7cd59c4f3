// The vector transform's kernels at the current level.
#pragma once

#include "multiply/vst/kernels/kernels.h"
#include "multiply/vst/kernels/transform_kernels.h"

namespace qmp::vst {

const TransformKernels& transform_kernels();
const ConversionKernels& conversion_kernels();

}  // namespace qmp::vst
