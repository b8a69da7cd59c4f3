#include "platform/os/thread_start.h"

#include <windows.h>

namespace qmp::os {

void prepare_thread_for_crashes() {
    // The pages below the guard page that the system leaves to whoever handles the overflow.
    ULONG guarantee = 128 * 1024;
    SetThreadStackGuarantee(&guarantee);
}

}  // namespace qmp::os
