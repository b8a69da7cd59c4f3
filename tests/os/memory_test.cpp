#include "platform/os/memory.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(OsMemory, WhatIsAvailableIsPartOfTheWhole) {
    const std::uint64_t total = qmp::os::total_physical_memory();
    const std::uint64_t available = qmp::os::available_physical_memory();
    EXPECT_GT(total, std::uint64_t{1} << 26);
    EXPECT_GT(available, 0u);
    EXPECT_LE(available, total);
}

TEST(OsMemory, WhatCanBeCommittedIsMoreThanThisTestAndLessThanTheAddressSpace) {
    const std::uint64_t most = qmp::os::committable_memory();
    if (most == 0) GTEST_SKIP() << "the system refuses by itself";
    EXPECT_GT(most, std::uint64_t{1} << 24);
    EXPECT_LT(most, std::uint64_t{1} << 47);
}

// A hint changes nothing that can be seen, wherever the memory starts and ends.
TEST(OsMemory, LargePagesAreOnlyPreferred) {
    std::vector<unsigned char> memory(1 << 20, 0x5a);
    qmp::os::prefer_large_pages(memory.data() + 1, memory.size() - 2);
    qmp::os::prefer_large_pages(memory.data() + 1, 5);
    qmp::os::prefer_large_pages(memory.data(), 0);
    EXPECT_EQ(memory, std::vector<unsigned char>(1 << 20, 0x5a));
}

}  // namespace
