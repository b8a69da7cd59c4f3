// The vector transform in the registry of algorithms.
#pragma once

#include "multiply/algorithm.h"

namespace qmp::vst {

const Algorithm32& algorithm32();
const Algorithm64& algorithm64();

}  // namespace qmp::vst
