#include "platform/os/linux/mappings.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

constexpr const char* smaps =
    "00400000-00600000 r-xp 00000000 fe:00 12  /program\n"
    "Size:               2048 kB\n"
    "AnonHugePages:      2048 kB\n"
    "7f0000000000-7f0000400000 rw-p 00000000 00:00 0 \n"
    "Size:               4096 kB\n"
    "AnonHugePages:      2048 kB\n"
    "VmFlags: rd wr mr\n"
    "7f0000400000-7f0000600000 rw-p 00000000 00:00 0 \n"
    "AnonHugePages:      1024 kB\n"
    "7f0000800000-7f0000c00000 rw-p 00000000 00:00 0 [stack]\n"
    "AnonHugePages:      4096 kB\n";

std::uint64_t bytes_in(std::uint64_t begin, std::uint64_t bytes) {
    std::istringstream text(smaps);
    return qmp::os::huge_page_bytes(text, begin, bytes);
}

TEST(Mappings, HugePagesAreSummedOverTheMappingsOfABlock) {
    EXPECT_EQ(bytes_in(0x7f0000000000, 0x400000), 2u << 20);
    EXPECT_EQ(bytes_in(0x7f0000000000, 0x600000), 3u << 20);
    EXPECT_EQ(bytes_in(0x7f0000000000, 0xc00000), 7u << 20);
    EXPECT_EQ(bytes_in(0x7f0000400000, 0x200000), 1u << 20);
    EXPECT_EQ(bytes_in(0x7f0000600000, 0x200000), 0u);
}

TEST(Mappings, OneThatReachesBeyondTheBlockIsNotCounted) {
    EXPECT_EQ(bytes_in(0x7f0000000000, 0x300000), 0u);
    EXPECT_EQ(bytes_in(0x7f0000100000, 0x300000), 0u);
}

TEST(Mappings, NothingIsKnownFromAnEmptyText) {
    std::istringstream empty;
    EXPECT_EQ(qmp::os::huge_page_bytes(empty, 0, ~std::uint64_t{0}), 0u);
}

TEST(Mappings, TheSizeOfReservedPages) {
    std::istringstream meminfo("HugePages_Free:        0\nHugepagesize:       2048 kB\nHugetlb:     0 kB\n");
    EXPECT_EQ(qmp::os::huge_page_size(meminfo), 2u << 20);
    std::istringstream without("MemTotal:  1024 kB\n");
    EXPECT_EQ(qmp::os::huge_page_size(without), 0u);
}

}  // namespace
