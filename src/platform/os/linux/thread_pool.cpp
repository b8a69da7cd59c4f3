#include "platform/os/thread_pool.h"

namespace qmp::os {

ThreadPool* system_thread_pool() {
    return nullptr;
}

}  // namespace qmp::os
