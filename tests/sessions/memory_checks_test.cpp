#include "sessions/memory_checks.h"

#include <gtest/gtest.h>

#include "support/console.h"

namespace kelvara {
namespace {

using kelvara_test::printed_by;

constexpr const char* too_little = "        Warning: There is insufficient physical memory.\n";
constexpr const char* too_little_free = "        Warning: There is insufficient available physical memory.\n";

std::string warning(std::uint64_t bytes, std::uint64_t total, std::uint64_t available) {
    return printed_by([&] { warn_of_physical_memory(bytes, {total, available}); });
}

TEST(AddressSpaceCheck, RefusesTwoToThe63AndMore) {
    constexpr std::uint64_t limit = std::uint64_t{1} << 63;
    for (const std::uint64_t bytes : {std::uint64_t{0}, limit - 1}) {
        EXPECT_EQ(printed_by([&] { EXPECT_TRUE(fits_address_space(bytes)); }), "");
    }
    for (const std::uint64_t bytes : {limit, UINT64_MAX}) {
        EXPECT_EQ(printed_by([&] { EXPECT_FALSE(fits_address_space(bytes)); }),
                  "        Cannot Start: Insufficient Address Space\n");
    }
}

TEST(PhysicalMemoryCheck, WarnsOfTheMachinesMemoryFirst) {
    EXPECT_EQ(warning(1001, 1000, 500), too_little);
    EXPECT_EQ(warning(501, 1000, 500), too_little_free);
}

TEST(PhysicalMemoryCheck, IsSilentUpToTheFigures) {
    EXPECT_EQ(warning(500, 1000, 500), "");
    EXPECT_EQ(warning(1000, 1000, 1000), "");
    EXPECT_EQ(warning(0, 1000, 500), "");
}

TEST(PhysicalMemoryCheck, LeavesOutWhatIsNotKnown) {
    EXPECT_EQ(warning(UINT64_MAX, 0, 0), "");
    EXPECT_EQ(warning(501, 0, 500), too_little_free);
    EXPECT_EQ(warning(1001, 1000, 0), too_little);
    EXPECT_EQ(warning(999, 1000, 0), "");
}

TEST(PhysicalMemoryCheck, KnowsThisMachine) {
    const PhysicalMemory memory = physical_memory();
    EXPECT_GT(memory.total, 0u);
    EXPECT_GT(memory.available, 0u);
    EXPECT_LE(memory.available, memory.total);
    EXPECT_EQ(printed_by([] { warn_of_physical_memory(UINT64_MAX); }), too_little);
}

}  // namespace
}  // namespace kelvara
