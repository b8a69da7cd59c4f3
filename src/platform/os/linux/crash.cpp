#include "platform/os/crash.h"

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <csignal>

#include "platform/os/linux/crash_context.h"

namespace qmp::os {

sigjmp_buf* volatile refuge_of_dump = nullptr;

namespace {

constexpr int fatal_signals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS};

CrashHandler installed_handler = nullptr;
// The thread that crashed first; 0 while none has.
std::atomic<pid_t> crashed_thread{0};

// A crash by running out of stack leaves none for the handler.
alignas(16) char alternate_stack[256 * 1024];

// Ends the process by the same signal, as if nobody had caught it: the parent sees the true cause.
[[noreturn]] void die_of(int signal) {
    struct sigaction by_default {};
    by_default.sa_handler = SIG_DFL;
    sigaction(signal, &by_default, nullptr);
    sigset_t unblocked;
    sigemptyset(&unblocked);
    sigaddset(&unblocked, signal);
    pthread_sigmask(SIG_UNBLOCK, &unblocked, nullptr);
    raise(signal);
    _exit(128 + signal);
}

void handle_signal(int signal, siginfo_t* info, void* machine) {
    const auto self = static_cast<pid_t>(syscall(SYS_gettid));
    pid_t owner = 0;
    if (!crashed_thread.compare_exchange_strong(owner, self)) {
        while (owner != self) pause();
        if (refuge_of_dump != nullptr) siglongjmp(*refuge_of_dump, 1);
        die_of(signal);
    }
    const CrashContext context{signal, info, static_cast<const ucontext_t*>(machine)};
    installed_handler(&context);
    die_of(signal);
}

}  // namespace

void install_crash_handler(CrashHandler handler) {
    installed_handler = handler;
    prepare_crash_dump();

    stack_t stack{};
    stack.ss_sp = alternate_stack;
    stack.ss_size = sizeof alternate_stack;
    sigaltstack(&stack, nullptr);

    for (const int signal : fatal_signals) {
        struct sigaction action {};
        action.sa_sigaction = handle_signal;
        // A fault inside the handler must arrive, or the kernel would end the process unheard.
        action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

}  // namespace qmp::os
