#include "platform/os/memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>

#include "platform/os/linux/control_group.h"

namespace qmp::os {
namespace {

// A line "Name:   value kB" of /proc/meminfo in bytes; 0 when it is missing.
std::uint64_t memory_line(const std::string& wanted) {
    std::ifstream file("/proc/meminfo");
    std::string name;
    std::uint64_t kibibytes;
    std::string rest;
    while (file >> name >> kibibytes && std::getline(file, rest)) {
        if (name == wanted) return kibibytes * 1024;
    }
    return 0;
}

}  // namespace

std::uint64_t total_physical_memory() {
    return memory_line("MemTotal:");
}

std::uint64_t available_physical_memory() {
    return memory_line("MemAvailable:");
}

std::uint64_t committable_memory() {
    const std::uint64_t available = available_physical_memory();
    if (available == 0) return 0;
    return std::min(available + memory_line("SwapFree:"), control_group_memory_left());
}

void prefer_large_pages(void* memory, std::uint64_t bytes) {
    // The hint is for whole pages.
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(memory) + page - 1) / page * page;
    const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) / page * page;
    if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

}  // namespace qmp::os
