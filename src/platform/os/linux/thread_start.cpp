#include "platform/os/thread_start.h"

#include <sys/mman.h>

#include <csignal>
#include <cstddef>

namespace qmp::os {
namespace {

bool has_alternate_stack() {
    stack_t present{};
    return sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE) == 0;
}

// Pages of its own, touched only by a crash: signals find the stack here when the thread's own is used up.
class AlternateStack {
  public:
    AlternateStack() {
        // A sanitizer gives threads one of its own.
        if (has_alternate_stack()) return;
        void* memory =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
        if (memory == MAP_FAILED) return;
        stack_t stack{};
        stack.ss_sp = memory;
        stack.ss_size = bytes;
        if (sigaltstack(&stack, nullptr) == 0) {
            memory_ = memory;
        } else {
            munmap(memory, bytes);
        }
    }
    ~AlternateStack() {
        if (memory_ == nullptr) return;
        stack_t present{};
        if (sigaltstack(nullptr, &present) == 0 && present.ss_sp == memory_) {
            stack_t none{};
            none.ss_flags = SS_DISABLE;
            sigaltstack(&none, nullptr);
        }
        munmap(memory_, bytes);
    }
    AlternateStack(const AlternateStack&) = delete;
    AlternateStack& operator=(const AlternateStack&) = delete;

  private:
    // Room for the handler and for the registers that the kernel saves, the widest vectors included.
    static constexpr std::size_t bytes = 256 * 1024;
    void* memory_ = nullptr;
};

}  // namespace

void prepare_thread_for_crashes() {
    static thread_local AlternateStack stack;
    static_cast<void>(stack);
}

}  // namespace qmp::os
