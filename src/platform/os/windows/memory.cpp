#include "platform/os/memory.h"

#include <windows.h>

namespace qmp::os {
namespace {

// All zeros when the call fails.
MEMORYSTATUSEX memory_status() {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (!GlobalMemoryStatusEx(&status)) return {};
    return status;
}

}  // namespace

std::uint64_t total_physical_memory() {
    return memory_status().ullTotalPhys;
}

std::uint64_t available_physical_memory() {
    return memory_status().ullAvailPhys;
}

std::uint64_t committable_memory() {
    return memory_status().ullAvailPageFile;
}

// Large pages are only had by asking for them when the memory is reserved.
void prefer_large_pages(void*, std::uint64_t) {}

}  // namespace qmp::os
