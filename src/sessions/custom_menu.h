// The menu "Custom Compute a Constant", shown until a computation has run.
#pragma once

#include "sessions/custom_settings.h"

namespace kelvara {

// Changes the settings as the user chooses, and runs the computation. A choice that is refused is told and
// changes nothing. Exceptions of the computation propagate.
void run_custom_menu(CustomSettings& settings);

}  // namespace kelvara
