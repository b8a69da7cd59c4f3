#include "platform/os/hardware.h"

#include <windows.h>

#include "platform/os/memory.h"
#include "platform/os/threads.h"
#include "platform/os/windows/hardware_facts.h"

namespace qmp::os {

std::string os_version() {
    return os_version_of(L"Kernel32.dll");
}

ProcessorCounts processor_counts() {
    DWORD bytes = 0;
    GetLogicalProcessorInformationEx(RelationAll, nullptr, &bytes);
    std::vector<std::byte> relations(bytes);
    const bool known =
        bytes > 0 &&
        GetLogicalProcessorInformationEx(
            RelationAll, reinterpret_cast<SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX*>(relations.data()),
            &bytes);
    ProcessorCounts counts;
    if (known) counts = processor_counts_of(std::span(relations).first(bytes));
    if (counts.logical_cores == 0) counts.logical_cores = active_processors();
    return counts;
}

std::uint64_t base_frequency() {
    DWORD megahertz = 0;
    DWORD bytes = sizeof megahertz;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", L"~MHz",
                     RRF_RT_REG_DWORD, nullptr, &megahertz, &bytes) != ERROR_SUCCESS) {
        return 0;
    }
    return std::uint64_t{megahertz} * 1'000'000;
}

std::uint64_t installed_memory() {
    ULONGLONG kibibytes = 0;
    // Fails where the firmware's tables are damaged.
    if (!GetPhysicallyInstalledSystemMemory(&kibibytes)) return total_physical_memory();
    return kibibytes * 1024;
}

Motherboard motherboard(SerialNumber serial_number) {
    return motherboard_of(*make_wmi_service(), serial_number);
}

std::vector<MemoryModule> memory_modules() {
    return memory_modules_of(*make_wmi_service());
}

}  // namespace qmp::os
