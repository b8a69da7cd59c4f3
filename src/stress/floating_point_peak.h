// What the machine could do at most: the measure of a test's floating-point operations.
#pragma once

#include "stress/stress_threads.h"

namespace kelvara {

// Operations per second of double precision of all threads together, a fused multiply-add being one, at the
// current instruction-set level; measured for some hundredths of a second. 0 when nothing could be measured.
double measure_floating_point_peak(const StressMachine& machine, StressThreads& threads);

}  // namespace kelvara
