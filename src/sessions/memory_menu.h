// The menu "Memory Settings" of a Ram Only computation.
#pragma once

#include "sessions/ram_settings.h"

namespace kelvara {

void edit_memory(RamSettings& settings);

}  // namespace kelvara
