// The screens that choose a benchmark's type and size.
#pragma once

#include <cstdint>

#include "sessions/benchmark_settings.h"

namespace kelvara {

// Asks for the type, unless there is a single thread anyway, then for the size. `available_memory` (bytes) is
// shown.
void ask_benchmark(BenchmarkSettings& settings, std::uint64_t available_memory);

// Asks, and runs what was chosen.
void run_benchmark_menu(BenchmarkSettings& settings);

}  // namespace kelvara
