// Binding a thread to a processor group.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/processor_system.h"

namespace qmp {

// Binds the calling thread to all processors of group n modulo the number of groups. A failure is only a
// warning, printed once per process however many threads meet it.
void set_thread_group(std::uint64_t n);

// The same with a memory of its own for the warnings that were given. Any number of threads may use one.
class ThreadGroupBinder {
  public:
    explicit ThreadGroupBinder(ProcessorSystem& system) : system_(system) {}
    void bind(std::uint64_t n);

  private:
    ProcessorSystem& system_;
    std::atomic<bool> warned_of_empty_group_{false};
    std::atomic<bool> warned_of_affinity_{false};
};

}  // namespace qmp
