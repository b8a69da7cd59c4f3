// The menu "Select a Mode": where the numbers of a computation live.
#pragma once

#include "sessions/custom_settings.h"

namespace kelvara {

// Shows what each mode would take for the current constant and size, and makes the mode chosen the current
// one.
void ask_mode(CustomSettings& settings);

}  // namespace kelvara
