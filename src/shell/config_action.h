// The action "config": runs what a configuration file describes.
#pragma once

#include "config/command_line.h"

namespace kelvara {

void run_config_action(CommandLine& command_line);

}  // namespace kelvara
