// The "stress" action's options.
#pragma once

#include <span>

#include "config/command_line.h"
#include "stress/catalogue.h"
#include "stress/stress_settings.h"

namespace kelvara {

// Consumes the action's keyword and all that follows: the settings that the tests are to run with.
StressSettings parse_stress_options(CommandLine& command_line,
                                    std::span<const StressTestEntry> tests = stress_tests());

}  // namespace kelvara
