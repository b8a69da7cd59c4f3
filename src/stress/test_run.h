// One test, on all threads, for its time.
#pragma once

#include <cstddef>
#include <span>

#include "platform/parallel/parallel_context.h"
#include "stress/catalogue.h"
#include "stress/stress_report.h"
#include "stress/stress_threads.h"

namespace kelvara {

// Prints its lines, the report included, and returns what came of it. Skips a test that does not fit the
// memory, which is 64-byte aligned, or of which a product would have no words. The first error ends a test.
// `framework` builds tables that threads share.
StressReport run_stress_test(const StressTestEntry& entry, const StressSettings& settings,
                             std::span<std::byte> memory, qmp::ParallelContext framework, double peak,
                             const StressMachine& machine, StressThreads& threads);

}  // namespace kelvara
