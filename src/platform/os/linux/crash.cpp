#include <execinfo.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/os/process.h"

namespace qmp::os {

struct CrashContext {
    int signal = 0;
    const siginfo_t* info = nullptr;
    const ucontext_t* machine = nullptr;
};

namespace {

constexpr int fatal_signals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

CrashHandler installed_handler = nullptr;
std::atomic<bool> handling{false};

// A crash by running out of stack leaves none for the handler.
alignas(16) char alternate_stack[256 * 1024];

// Text into a file descriptor by system calls alone.
class DumpFile {
  public:
    explicit DumpFile(const char* path)
        : descriptor_(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)),
          error_(descriptor_ < 0 ? errno : 0) {}
    ~DumpFile() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    DumpFile(const DumpFile&) = delete;
    DumpFile& operator=(const DumpFile&) = delete;

    bool is_open() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }
    int error() const { return error_; }

    void text(std::string_view bytes) {
        while (!bytes.empty() && error_ == 0) {
            const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
            if (written > 0) {
                bytes.remove_prefix(static_cast<std::size_t>(written));
            } else if (written < 0 && errno != EINTR) {
                error_ = errno;
            }
        }
    }

    void decimal(std::int64_t value) {
        char digits[24];
        char* start = digits + sizeof digits;
        std::uint64_t rest =
            value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
        do {
            *--start = static_cast<char>('0' + rest % 10);
        } while ((rest /= 10) != 0);
        if (value < 0) *--start = '-';
        text({start, static_cast<std::size_t>(digits + sizeof digits - start)});
    }

    void hexadecimal(std::uint64_t value) {
        char digits[16];
        for (int i = 15; i >= 0; --i, value >>= 4) digits[i] = "0123456789abcdef"[value & 15];
        text("0x");
        text({digits, sizeof digits});
    }

    void copy_of(const char* path) {
        const int source = open(path, O_RDONLY | O_CLOEXEC);
        if (source < 0) return;
        char bytes[4096];
        ssize_t count;
        while ((count = read(source, bytes, sizeof bytes)) > 0)
            text({bytes, static_cast<std::size_t>(count)});
        close(source);
    }

  private:
    int descriptor_;
    int error_;
};

std::string_view signal_name(int signal) {
    const char* name = sigabbrev_np(signal);
    return name != nullptr ? name : "?";
}

void write_cause(DumpFile& dump, const CrashContext& context) {
    dump.text("Signal: SIG");
    dump.text(signal_name(context.signal));
    dump.text(" (");
    dump.decimal(context.signal);
    dump.text(")\n");
    if (context.info != nullptr) {
        dump.text("Code: ");
        dump.decimal(context.info->si_code);
        dump.text("\nAddress: ");
        dump.hexadecimal(reinterpret_cast<std::uintptr_t>(context.info->si_addr));
        dump.text("\n");
    }
}

void write_registers(DumpFile& dump, const ucontext_t& machine) {
    static constexpr struct {
        const char* name;
        int index;
    } registers[] = {{"rip", REG_RIP}, {"rsp", REG_RSP}, {"rbp", REG_RBP}, {"rax", REG_RAX},
                     {"rbx", REG_RBX}, {"rcx", REG_RCX}, {"rdx", REG_RDX}, {"rsi", REG_RSI},
                     {"rdi", REG_RDI}, {"r8 ", REG_R8},  {"r9 ", REG_R9},  {"r10", REG_R10},
                     {"r11", REG_R11}, {"r12", REG_R12}, {"r13", REG_R13}, {"r14", REG_R14},
                     {"r15", REG_R15}, {"efl", REG_EFL}, {"err", REG_ERR}, {"cr2", REG_CR2}};
    dump.text("\nRegisters:\n");
    for (const auto& entry : registers) {
        dump.text("  ");
        dump.text(entry.name);
        dump.text(" ");
        dump.hexadecimal(static_cast<std::uint64_t>(machine.uc_mcontext.gregs[entry.index]));
        dump.text("\n");
    }
}

void write_call_stack(DumpFile& dump) {
    void* frames[128];
    const int count = backtrace(frames, 128);
    dump.text("\nCall stack, innermost first:\n");
    backtrace_symbols_fd(frames, count, dump.descriptor());
}

// Ends the process by the same signal, as if nobody had caught it: the parent sees the true cause.
void die_of(int signal) {
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
    static std::atomic<pid_t> owner{0};
    const auto self = static_cast<pid_t>(syscall(SYS_gettid));
    if (handling.exchange(true)) {
        // A second fault of the thread that is already here ends everything; other threads wait for
        // the end.
        if (owner.load() == self) die_of(signal);
        for (;;) pause();
    }
    owner.store(self);
    const CrashContext context{signal, info, static_cast<const ucontext_t*>(machine)};
    installed_handler(&context);
    die_of(signal);
}

}  // namespace

void install_crash_handler(CrashHandler handler) {
    installed_handler = handler;

    // The first call of backtrace loads a library and allocates: not in a signal, please.
    void* frame;
    backtrace(&frame, 1);

    stack_t stack{};
    stack.ss_sp = alternate_stack;
    stack.ss_size = sizeof alternate_stack;
    sigaltstack(&stack, nullptr);

    for (const int signal : fatal_signals) {
        struct sigaction action {};
        action.sa_sigaction = handle_signal;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

DumpOutcome write_crash_dump(const char* path, const CrashContext* context) {
    DumpFile dump(path);
    if (!dump.is_open()) return {DumpResult::cannot_create, static_cast<std::uint32_t>(dump.error())};

    dump.text("Process: ");
    dump.decimal(getpid());
    dump.text("\nThread: ");
    dump.decimal(syscall(SYS_gettid));
    dump.text("\n");
    if (context != nullptr) {
        write_cause(dump, *context);
        if (context->machine != nullptr) write_registers(dump, *context->machine);
    }
    write_call_stack(dump);
    dump.text("\nMemory map:\n");
    dump.copy_of("/proc/self/maps");
    dump.text("\nStatus:\n");
    dump.copy_of("/proc/self/status");
    if (dump.error() != 0) return {DumpResult::cannot_write, static_cast<std::uint32_t>(dump.error())};
    return {};
}

}  // namespace qmp::os
