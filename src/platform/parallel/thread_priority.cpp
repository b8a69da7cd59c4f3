#include "platform/parallel/thread_priority.h"

#include "console/console.h"
#include "platform/os/threads.h"

namespace qmp {

void set_thread_priority(std::int64_t priority) {
    if (priority < -3 || priority > 3) {
        console::print_warning("Warning: Ignoring unknown priority number.");
    } else if (!os::set_thread_priority(static_cast<int>(priority))) {
        console::print_warning("Warning: Unable to set thread priority.");
    }
}

}  // namespace qmp
