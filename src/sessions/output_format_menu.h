// The menu "Select an Output Format": text, one compressed file, or several.
#pragma once

#include "sessions/computation_settings.h"

namespace kelvara {

void ask_output_format(ComputationSettings& settings);

}  // namespace kelvara
