#include "platform/parallel/child_thread.h"

#include "errors/fatal.h"
#include "platform/os/thread_start.h"

namespace qmp {

std::thread start_child_thread(std::function<void()> work) {
    return std::thread([work = std::move(work)] {
        os::prepare_thread_for_crashes();
        try {
            work();
        } catch (...) {
            end_after_child_thread_exception();
        }
    });
}

}  // namespace qmp
