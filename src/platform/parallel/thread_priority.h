// The user's choice of the calling thread's priority.
#pragma once

#include <cstdint>

namespace qmp {

// From -3 (idle) over 0 (normal) to 3 (time critical). Another number, or a refusal of the system, is only
// a warning on the console.
void set_thread_priority(std::int64_t priority);

}  // namespace qmp
