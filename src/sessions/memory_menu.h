// The menus "Memory Settings", one for each mode.
#pragma once

#include "sessions/ram_settings.h"
#include "sessions/swap_settings.h"

namespace kelvara {

void edit_memory(RamSettings& settings);
void edit_memory(SwapSettings& settings);

}  // namespace kelvara
