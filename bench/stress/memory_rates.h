// What the memory can do: the measure of a test's traffic.
#pragma once

#include "stress/stress_threads.h"

namespace bench {

// Bytes per second of all threads together, each on arrays of its own that fit no cache. What a store reads
// of the line that it goes to is not counted.
struct MemoryRates {
    double triad;  // a[i] = b[i] + s * c[i]
    double copy;   // memcpy
};

MemoryRates measure_memory(kelvara::StressThreads& threads, double seconds);

}  // namespace bench
