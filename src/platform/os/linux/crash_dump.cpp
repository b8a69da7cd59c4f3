// The dump of a crash: what can be told for certain first, what must be followed through damaged memory last.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <unwind.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include "platform/os/clock.h"
#include "platform/os/crash.h"
#include "platform/os/linux/crash_context.h"
#include "platform/os/linux/dump_file.h"

namespace qmp::os {
namespace {

constexpr std::size_t largest_call_stack = 128;
constexpr std::size_t stack_bytes_shown = 16 * 1024;

// Above the main thread's frames lie its arguments and its environment, which may hold secrets.
std::uintptr_t end_of_frames;

// The dynamic linker knows the executable by an empty name.
char program_path_text[4096];

std::string_view path_of(const char* module) {
    return module == nullptr || *module == '\0' ? program_path_text : module;
}

std::string_view name_of(std::string_view path) {
    return path.substr(path.find_last_of('/') + 1);
}

// The addresses of code in the order of the calls, innermost first.
struct CallStack {
    std::uintptr_t frames[largest_call_stack];
    std::size_t count = 0;
    // The instruction at fault. The handler's own frames, which lie above it, are left out until it is
    // reached.
    std::uintptr_t fault = 0;
    bool reached_fault = true;
};

_Unwind_Reason_Code take_frame(_Unwind_Context* frame, void* data) {
    CallStack& stack = *static_cast<CallStack*>(data);
    int before_instruction = 0;
    const std::uintptr_t address = _Unwind_GetIPInfo(frame, &before_instruction);
    if (!stack.reached_fault) {
        if (address != stack.fault) return _URC_NO_REASON;
        stack.reached_fault = true;
    }
    // The outermost function was called from nowhere.
    if (address == 0 || stack.count == largest_call_stack) return _URC_END_OF_STACK;
    // A return address stands behind its call, where another line or another function may begin.
    stack.frames[stack.count++] = address - (before_instruction != 0 ? 0 : 1);
    return _URC_NO_REASON;
}

// A word of this process's memory, or nothing where there is no memory: reading through the system does
// not fault.
bool read_memory(std::uintptr_t address, void* bytes, std::size_t size) {
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    if (memory < 0) return false;
    const ssize_t count = pread(memory, bytes, size, static_cast<off_t>(address));
    close(memory);
    return count == static_cast<ssize_t>(size);
}

std::uintptr_t machine_register(const ucontext_t& machine, int index) {
    return static_cast<std::uintptr_t>(machine.uc_mcontext.gregs[index]);
}

void write_cause(DumpFile& dump, const CrashContext& context) {
    const char* name = sigabbrev_np(context.signal);
    dump.text("Signal: SIG");
    dump.text(name != nullptr ? name : "?");
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
        dump.hexadecimal(machine_register(machine, entry.index));
        dump.text("\n");
    }
}

// "  #3  kelvara+0x1a2b  0x000055...": the offset is what addr2line takes.
void write_frame(DumpFile& dump, std::size_t number, std::uintptr_t address) {
    dump.text("  #");
    dump.decimal(static_cast<std::int64_t>(number));
    dump.text("  ");
    // Unlike dladdr, this takes no lock.
    dl_find_object module{};
    if (_dl_find_object(reinterpret_cast<void*>(address), &module) == 0) {
        dump.text(name_of(path_of(module.dlfo_link_map->l_name)));
        dump.text("+");
        dump.hexadecimal(address - module.dlfo_link_map->l_addr, 1);
    } else {
        dump.text("?");
    }
    dump.text("  ");
    dump.hexadecimal(address);
    dump.text("\n");
}

void write_call_stack(DumpFile& dump, const ucontext_t* machine) {
    static CallStack stack;
    stack = {};
    if (machine != nullptr) {
        stack.fault = machine_register(*machine, REG_RIP);
        stack.reached_fault = false;
    }
    dump.text("\nCall stack, innermost first:\n");
    dump.flush();

    sigjmp_buf refuge;
    volatile bool followed = false;
    if (sigsetjmp(refuge, 1) == 0) {
        refuge_of_dump = &refuge;
        _Unwind_Backtrace(take_frame, &stack);
        followed = true;
    }
    refuge_of_dump = nullptr;

    if (machine != nullptr && stack.count == 0) {
        // Nothing is known of the code at fault. If a call led nowhere, its return address is still there.
        std::uintptr_t caller = 0;
        stack.frames[stack.count++] = stack.fault;
        if (read_memory(machine_register(*machine, REG_RSP), &caller, sizeof caller) && caller != 0)
            stack.frames[stack.count++] = caller - 1;
    }
    for (std::size_t i = 0; i < stack.count; ++i) write_frame(dump, i, stack.frames[i]);
    if (!followed) dump.text("  The stack is damaged here.\n");
}

// The build-id lies in one of the notes of a module that is mapped into memory.
void write_build_id(DumpFile& dump, const dl_phdr_info& module, const ElfW(Phdr) & header) {
    std::uintptr_t note = module.dlpi_addr + header.p_vaddr;
    const std::uintptr_t end = note + header.p_memsz;
    const auto rounded = [](std::size_t size) { return (size + 3) & ~std::size_t{3}; };
    while (note + sizeof(ElfW(Nhdr)) <= end) {
        const auto& head = *reinterpret_cast<const ElfW(Nhdr)*>(note);
        const auto* const name = reinterpret_cast<const char*>(note + sizeof head);
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(name + rounded(head.n_namesz));
        note += sizeof head + rounded(head.n_namesz) + rounded(head.n_descsz);
        if (note > end) return;
        if (head.n_type != NT_GNU_BUILD_ID || head.n_namesz != 4 || std::memcmp(name, "GNU", 4) != 0)
            continue;
        dump.text("  build-id ");
        for (std::size_t i = 0; i < head.n_descsz; ++i) dump.byte(bytes[i]);
        return;
    }
}

int write_module(dl_phdr_info* module, std::size_t, void* data) {
    DumpFile& dump = *static_cast<DumpFile*>(data);
    dump.text("  ");
    dump.hexadecimal(module->dlpi_addr);
    dump.text("  ");
    dump.text(path_of(module->dlpi_name));
    for (int i = 0; i < module->dlpi_phnum; ++i) {
        if (module->dlpi_phdr[i].p_type == PT_NOTE) write_build_id(dump, *module, module->dlpi_phdr[i]);
    }
    dump.text("\n");
    return 0;
}

void write_modules(DumpFile& dump) {
    dump.text("\nModules, each behind the address that it is loaded at:\n");
    // Its lock admits the thread that holds it.
    dl_iterate_phdr(write_module, &dump);
}

void write_stack_memory(DumpFile& dump, std::uintptr_t top) {
    constexpr std::size_t row = 4;
    dump.text("\nStack memory:\n");
    std::uint64_t words[row];
    top &= ~std::uintptr_t{7};
    for (std::size_t offset = 0; offset < stack_bytes_shown; offset += sizeof words) {
        const std::uintptr_t end = top + offset + sizeof words;
        if (top < end_of_frames && end > end_of_frames) return;
        if (!read_memory(top + offset, words, sizeof words)) return;
        dump.text("  ");
        dump.hexadecimal(top + offset);
        dump.text(":");
        for (const std::uint64_t word : words) {
            dump.text(" ");
            dump.hexadecimal(word);
        }
        dump.text("\n");
    }
}

void write_thread(DumpFile& dump, const char* id) {
    constexpr std::string_view folder = "/proc/self/task/";
    char path[64];
    char* end = std::copy(folder.begin(), folder.end(), path);
    end = std::copy_n(id, std::min<std::size_t>(std::strlen(id), 32), end);
    std::memcpy(end, "/comm", 6);
    dump.text("  ");
    dump.text(id);
    dump.text("  ");
    // Ends with a line break.
    dump.copy_of(path);
}

void write_threads(DumpFile& dump) {
    dump.text("\nThreads:\n");
    const int folder = open("/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return;
    alignas(dirent64) char entries[4096];
    std::int64_t threads = 0;
    long bytes;
    while ((bytes = syscall(SYS_getdents64, folder, entries, sizeof entries)) > 0) {
        for (long at = 0; at < bytes;) {
            const auto& entry = *reinterpret_cast<const dirent64*>(entries + at);
            at += entry.d_reclen;
            if (entry.d_name[0] == '.') continue;
            write_thread(dump, entry.d_name);
            ++threads;
        }
    }
    close(folder);
    dump.text("  Number: ");
    dump.decimal(threads);
    dump.text("\n");
}

}  // namespace

void prepare_crash_dump() {
    const ssize_t length = readlink("/proc/self/exe", program_path_text, sizeof program_path_text - 1);
    program_path_text[std::max<ssize_t>(length, 0)] = '\0';
    end_of_frames = reinterpret_cast<std::uintptr_t>(program_invocation_name);
    // The time zone's table is read and the unwinder's library is loaded with the first use.
    local_time();
    CallStack stack;
    _Unwind_Backtrace(take_frame, &stack);
}

DumpOutcome write_crash_dump(const char* path, std::string_view description, const CrashContext* context) {
    DumpFile dump(path);
    if (!dump.is_open()) return {DumpResult::cannot_create, static_cast<std::uint32_t>(dump.error())};
    const ucontext_t* const machine = context != nullptr ? context->machine : nullptr;

    dump.text(description);
    dump.text("Process: ");
    dump.decimal(getpid());
    dump.text("\nThread: ");
    dump.decimal(syscall(SYS_gettid));
    dump.text("\n");
    if (context != nullptr) write_cause(dump, *context);
    if (machine != nullptr) write_registers(dump, *machine);
    write_call_stack(dump, machine);
    write_modules(dump);
    if (machine != nullptr) write_stack_memory(dump, machine_register(*machine, REG_RSP));
    write_threads(dump);
    dump.text("\nMemory map:\n");
    dump.copy_of("/proc/self/maps");
    dump.text("\nStatus:\n");
    dump.copy_of("/proc/self/status");
    dump.close();
    if (dump.error() != 0) return {DumpResult::cannot_write, static_cast<std::uint32_t>(dump.error())};
    return {};
}

}  // namespace qmp::os
