// What a thread of the program does before its work.
#pragma once

namespace qmp::os {

// Gives the calling thread what the crash handler (process.h) needs when the crash is that the thread's own
// stack has run out. It is given back at the end of the thread. A further call has no effect, and neither has
// a call on the thread that installed the handler. A refusal of the system is ignored: without it such a
// crash only ends the process without a report.
void prepare_thread_for_crashes();

}  // namespace qmp::os
