// The stress test itself: all enabled tests in turn, again and again.
#pragma once

#include <cstdint>
#include <span>

#include "stress/catalogue.h"
#include "stress/stress_machine.h"
#include "stress/stress_settings.h"

namespace kelvara {

enum class StressEnd {
    nothing_run,  // no test is enabled, available and fits the memory
    errors,       // with stop-on-error
    enough,       // the iterations asked for
};

// Reserves the memory and goes on until errors are found and the settings say to stop at them, or until no
// test can run. `most_iterations` 0 sets no end.
StressEnd run_stress_tests(const StressSettings& settings,
                           std::span<const StressTestEntry> tests = stress_tests(),
                           const StressMachine& machine = {}, std::uint64_t most_iterations = 0);

}  // namespace kelvara
