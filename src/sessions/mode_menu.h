// The menu "Select a Mode": where the numbers of a computation live.
#pragma once

#include "sessions/ram_settings.h"

namespace kelvara {

void ask_mode(RamSettings& settings);

}  // namespace kelvara
