// One thread per task, for work in which each task must own a thread: binding to a node, pinning to a core,
// a lane of a RAID file. Independent of the chosen framework.
#pragma once

#include <cstdint>

#include "platform/parallel/basic_action.h"
#include "platform/parallel/child_thread.h"

namespace qmp {

// Runs action.run(i) on a new thread for every i in [start, end) and joins them all. Every thread is handed
// `value` as well; a task that wants it asks for thread_value(). A thread that cannot be created ends the
// call with std::system_error, after the others have finished. An exception that escapes a task ends the
// program.
void run_on_threads(BasicAction& action, std::uint64_t start, std::uint64_t end, std::uint32_t value = 0,
                    const StartThread& start_thread = start_child_thread);

// What run_on_threads was given for the calling thread; 0 on any other.
std::uint32_t thread_value();

}  // namespace qmp
