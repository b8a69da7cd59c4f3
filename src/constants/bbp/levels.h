// The digit extractor's kernels, one set for each instruction-set level (multiply/instruction_levels.h).
#pragma once

#include <string>
#include <vector>

#include "constants/bbp/kernels/kernels.h"

namespace kelvara::bbp {

// Of the level that runs.
const Kernels& current_kernels();
// What this build has, best first.
std::vector<std::string> kernel_names();

}  // namespace kelvara::bbp
