// The memory that a session reserves before it computes.
#include <gtest/gtest.h>

#include "config/notation.h"
#include "sessions/session_run.h"
#include "support/fatal.h"

namespace {

void configure(kelvara::RamSettings& settings, const std::string& folder, const char* large_pages) {
    settings.set_constant(kelvara::make_constant(kelvara::constant_id("e")));
    settings.set_decimal_digits(1000);
    settings.output_path = folder;
    settings.set_allocator("mmap");
    qmp::notation::Object config;
    config.insert_string("LargePages", large_pages);
    config.insert_string("LockedPages", "disabled");
    settings.allocator().read_config(config);
}

TEST(Reservation, EveryAllocatorServesASession) {
    const std::string digits =
        kelvara_test::run_session({"e", "exp(1)", "exp(1)"}, 1000, 2, "pushpool").decimal;
    for (const char* key : {"malloc", "mmap", "interleave"}) {
        const kelvara_test::TemporaryFolder folder;
        kelvara::RamSettings settings;
        configure(settings, folder.path(), "disabled");
        settings.set_allocator(key);
        kelvara::RamSession(settings).run();
        EXPECT_EQ(kelvara_test::file_content(folder.path("e - Dec - exp(1).txt")), digits) << key;
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(ReservationDeathTest, ForcedLargePagesThatCannotBeHadEndTheProgram) {
    const kelvara_test::TemporaryFolder folder;
    kelvara::RamSettings settings;
    configure(settings, folder.path(), "forced");
    if (settings.allocator().create_heap(std::uint64_t{1} << 20, nullptr, 1)->base)
        GTEST_SKIP() << "this machine has large pages";
    EXPECT_FATAL(kelvara::RamSession(settings).run(),
                 "\nReserving Working Memory...     \n\nLarge heap allocation failed.\n\n"
                 "Failed Allocation: .* MiB\n\n");
}
#endif

}  // namespace
