#include "platform/os/windows/hardware_facts.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/folder.h"

namespace qmp::os {
namespace {

TEST(OsVersion, IsThatOfTheSystemsLibrary) {
    const std::string version = os_version_of(L"Kernel32.dll");
    const std::size_t point = version.find('.');
    const std::size_t build = version.find(" Build ");
    ASSERT_TRUE(version.starts_with("Windows ")) << version;
    ASSERT_NE(point, std::string::npos) << version;
    ASSERT_NE(build, std::string::npos) << version;
    const std::string numbers = version.substr(8, point - 8) + version.substr(point + 1, build - point - 1) +
                                version.substr(build + 7);
    EXPECT_EQ(numbers.find_first_not_of("0123456789"), std::string::npos) << version;
}

TEST(OsVersion, IsEmptyWhenTheResourceCannotBeRead) {
    EXPECT_EQ(os_version_of(L"no_such_library_of_kelvara.dll"), "");
    const kelvara_test::TemporaryFolder folder;
    const std::filesystem::path file = folder.native("without_resource.dll");
    std::ofstream(file) << "no resources here";
    EXPECT_EQ(os_version_of(file.wstring().c_str()), "");
}

// Records as GetLogicalProcessorInformationEx returns them.
void append_record(std::vector<std::byte>& records, LOGICAL_PROCESSOR_RELATIONSHIP relationship,
                   const std::vector<KAFFINITY>& masks) {
    SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX record{};
    const std::size_t header = offsetof(SYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX, Processor);
    const std::size_t groups = header + offsetof(PROCESSOR_RELATIONSHIP, GroupMask);
    record.Relationship = relationship;
    record.Size = static_cast<DWORD>(groups + masks.size() * sizeof(GROUP_AFFINITY));
    record.Processor.GroupCount = static_cast<WORD>(masks.size());
    const std::size_t begin = records.size();
    records.resize(begin + record.Size);
    std::memcpy(records.data() + begin, &record, groups);
    for (std::size_t i = 0; i < masks.size(); ++i) {
        GROUP_AFFINITY affinity{};
        affinity.Group = static_cast<WORD>(i);
        affinity.Mask = masks[i];
        std::memcpy(records.data() + begin + groups + i * sizeof affinity, &affinity, sizeof affinity);
    }
}

TEST(ProcessorCounts, CountsCoresPackagesAndTheirProcessors) {
    std::vector<std::byte> records;
    append_record(records, RelationProcessorCore, {0x3});
    append_record(records, RelationProcessorCore, {0xc});
    append_record(records, RelationNumaNode, {0xf});
    append_record(records, RelationProcessorCore, {KAFFINITY{1} << 63});
    append_record(records, RelationProcessorPackage, {0xf});
    append_record(records, RelationProcessorPackage, {0, KAFFINITY{1} << 63});
    const ProcessorCounts counts = processor_counts_of(records);
    EXPECT_EQ(counts.logical_cores, 5u);
    EXPECT_EQ(counts.physical_cores, 3u);
    EXPECT_EQ(counts.sockets, 2u);
}

TEST(ProcessorCounts, RecordsThatDoNotFitAreNotCounted) {
    std::vector<std::byte> whole;
    append_record(whole, RelationProcessorCore, {0x3});
    const std::size_t first = whole.size();
    append_record(whole, RelationProcessorCore, {0xc});
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const std::uint32_t cores = size == whole.size() ? 2 : size >= first ? 1 : 0;
        EXPECT_EQ(processor_counts_of(cut).physical_cores, cores) << size;
        EXPECT_EQ(processor_counts_of(cut).logical_cores, 2 * cores) << size;
    }
    std::vector<std::byte> without_size(64, std::byte{0});
    EXPECT_EQ(processor_counts_of(without_size).physical_cores, 0u);
}

TEST(ProcessorCounts, OfNoRecordsAreUnknown) {
    const ProcessorCounts counts = processor_counts_of({});
    EXPECT_EQ(counts.logical_cores, 0u);
    EXPECT_EQ(counts.physical_cores, 0u);
    EXPECT_EQ(counts.sockets, 0u);
}

}  // namespace
}  // namespace qmp::os
