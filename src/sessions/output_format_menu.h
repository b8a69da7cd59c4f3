// The menu "Select an Output Format": text, one compressed file, or several.
#pragma once

#include "sessions/ram_settings.h"

namespace kelvara {

void ask_output_format(RamSettings& settings);

}  // namespace kelvara
