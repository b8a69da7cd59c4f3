#include "platform/os/windows/hardware_facts.h"

#include <windows.h>

#include <bit>
#include <cstring>

namespace qmp::os {

std::string os_version_of(const wchar_t* file) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(file, &ignored);
    if (size == 0) return {};
    std::vector<std::byte> resource(size);
    if (!GetFileVersionInfoW(file, 0, size, resource.data())) return {};
    void* root = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(resource.data(), L"\\", &root, &length) || root == nullptr ||
        length < sizeof(VS_FIXEDFILEINFO)) {
        return {};
    }
    VS_FIXEDFILEINFO version;
    std::memcpy(&version, root, sizeof version);
    return "Windows " + std::to_string(HIWORD(version.dwProductVersionMS)) + "." +
           std::to_string(LOWORD(version.dwProductVersionMS)) + " Build " +
           std::to_string(HIWORD(version.dwProductVersionLS));
}

ProcessorCounts processor_counts_of(std::span<const std::byte> relations) {
    using Record = SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX;
    constexpr std::size_t header = offsetof(Record, Processor);
    constexpr std::size_t groups = header + offsetof(PROCESSOR_RELATIONSHIP, GroupMask);
    ProcessorCounts counts;
    while (relations.size() >= header) {
        // Relationship and size; the rest depends on the relationship.
        Record record{};
        std::memcpy(&record, relations.data(), header);
        if (record.Size < header || record.Size > relations.size()) break;
        if (record.Relationship == RelationProcessorPackage) ++counts.sockets;
        if (record.Relationship == RelationProcessorCore) {
            ++counts.physical_cores;
            WORD count = 0;
            if (record.Size >= groups) {
                std::memcpy(&count, relations.data() + header + offsetof(PROCESSOR_RELATIONSHIP, GroupCount),
                            sizeof count);
            }
            for (std::size_t i = 0; i < count && groups + (i + 1) * sizeof(GROUP_AFFINITY) <= record.Size;
                 ++i) {
                GROUP_AFFINITY affinity;
                std::memcpy(&affinity, relations.data() + groups + i * sizeof affinity, sizeof affinity);
                counts.logical_cores +=
                    static_cast<std::uint32_t>(std::popcount(std::uint64_t{affinity.Mask}));
            }
        }
        relations = relations.subspan(record.Size);
    }
    return counts;
}

Motherboard motherboard_of(WmiService& service, SerialNumber serial_number) {
    std::vector<std::string_view> properties = {"Manufacturer", "Product", "Version"};
    if (serial_number == SerialNumber::read) properties.push_back("SerialNumber");
    try {
        const std::vector<WmiRow> rows = query_wmi("Win32_BaseBoard", properties, service);
        if (rows.empty()) return {};
        WmiRow board = rows.front();
        return {board["Manufacturer"], board["Product"], board["Version"], board["SerialNumber"]};
    } catch (const Environment::WMI_Exception&) {
        return {};
    }
}

std::vector<MemoryModule> memory_modules_of(WmiService& service) {
    constexpr std::string_view properties[] = {"Manufacturer", "PartNumber", "Capacity"};
    std::vector<MemoryModule> modules;
    try {
        for (WmiRow& module : query_wmi("Win32_PhysicalMemory", properties, service)) {
            modules.push_back({module["Manufacturer"], module["PartNumber"], module["Capacity"]});
        }
    } catch (const Environment::WMI_Exception&) {
        modules.clear();
    }
    return modules;
}

}  // namespace qmp::os
