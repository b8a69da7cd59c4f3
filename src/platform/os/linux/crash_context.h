// What the signal handler knows, and how the dump is protected from the damage that it describes.
#pragma once

#include <setjmp.h>
#include <signal.h>
#include <ucontext.h>

namespace qmp::os {

struct CrashContext {
    int signal = 0;
    const siginfo_t* info = nullptr;
    const ucontext_t* machine = nullptr;
};

// Where a fault of the thread that is writing the dump goes on; null while such a fault ends the process.
// Following a call stack whose memory is damaged faults easily.
extern sigjmp_buf* volatile refuge_of_dump;

// Called when the crash handler is installed: does everything that allocates when it is done for the first
// time.
void prepare_crash_dump();

}  // namespace qmp::os
