// One thread per task, for work in which each task must own a thread: binding to a node, pinning to a core,
// a lane of a RAID file. Independent of the chosen framework.
#pragma once

#include <cstdint>

#include "platform/parallel/basic_action.h"

namespace qmp {

// Runs action.run(i) on a new thread for every i in [start, end) and joins them all. A thread that cannot be
// created ends the call with std::system_error, after the others have finished. An exception that escapes a
// task ends the program.
void run_on_threads(BasicAction& action, std::uint64_t start, std::uint64_t end);

}  // namespace qmp
