// The kernels of the instruction-set level that runs.
#pragma once

#include "multiply/ntt64/kernels/kernels.h"

namespace qmp::ntt64 {

const Kernels& current_kernels();

}  // namespace qmp::ntt64
