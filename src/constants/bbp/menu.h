// The digit extractor's menu.
#pragma once

#include "constants/bbp/settings.h"

namespace kelvara::bbp {

// Changes the settings until they are to run, then lowers the priority of the process and runs them.
void show_menu(Settings settings);

}  // namespace kelvara::bbp
