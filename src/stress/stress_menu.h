// "Component Stress Tester": the menu of the tester's settings.
#pragma once

#include <span>

#include "stress/catalogue.h"
#include "stress/stress_settings.h"

namespace kelvara {

// Shows the menu and changes the settings until the user starts the tests.
void edit_stress_settings(StressSettings& settings, std::span<const StressTestEntry> tests = stress_tests());

}  // namespace kelvara
