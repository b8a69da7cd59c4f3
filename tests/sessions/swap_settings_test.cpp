// What Swap Mode adds to a computation's settings.
#include "sessions/swap_settings.h"

#include <gtest/gtest.h>

#include "errors/exception.h"
#include "platform/privileges.h"
#include "support/console.h"
#include "support/folder.h"
#include "support/messages.h"

namespace kelvara {
namespace {

using kelvara_test::FedInput;
using kelvara_test::message_of;
using kelvara_test::printed_by;

constexpr std::uint64_t mebibyte = 1 << 20;

std::string answer(SwapSettings& settings, std::int64_t option, const char* answers) {
    return printed_by([&] {
        FedInput input(answers);
        settings.handle_menu_option(option);
    });
}

TEST(SwapSettings, UsesTheMemoryThatIsAvailableInSteps) {
    EXPECT_EQ(SwapSettings({.total = 100, .available = 60}).memory_cap(), 60u);
    EXPECT_EQ(SwapSettings({.total = 100, .available = 0}).memory_cap(), 100u);
    EXPECT_EQ(SwapSettings({.total = 0, .available = 0}).memory_cap(), 1u << 30);
    EXPECT_EQ(SwapSettings({.total = 0, .available = 1000 * mebibyte}).memory_cap(), 960 * mebibyte);
    EXPECT_EQ(SwapSettings({.total = 0, .available = UINT64_MAX}).memory_cap(), 0x6ffffffffffffff9u);
}

TEST(SwapSettings, MemoryIsCapped) {
    SwapSettings settings;
    settings.set_memory_cap(UINT64_MAX);
    EXPECT_EQ(settings.memory_cap(), 0x6ffffffffffffff9u);
    settings.set_memory_cap(0);
    EXPECT_EQ(settings.memory_cap(), 0u);
}

TEST(SwapSettings, BytesPerSeekFollowTheSwapConfigurationUntilTheyAreChosen) {
    SwapSettings settings;
    EXPECT_EQ(settings.bytes_per_seek(), mebibyte);
    qmp::RaidSettings raid;
    raid.set_raid0({"", ""});
    settings.set_raid(raid);
    EXPECT_EQ(settings.bytes_per_seek(), 2 * mebibyte);
    settings.set_bytes_per_seek(100'000);
    raid.set_raid0({"", "", ""});
    settings.set_raid(raid);
    EXPECT_EQ(settings.bytes_per_seek(), 100'000u);
    settings.set_bytes_per_seek(0);
    EXPECT_EQ(settings.bytes_per_seek(), 3 * mebibyte);
}

TEST(SwapSettings, TheSwapConfigurationIsEditedByOption9) {
    SwapSettings settings;
    EXPECT_EQ(settings.raid_description(), "Not Set - Use default path.");
    const std::string text = answer(settings, 9, "3\n4\n\n\n\n\n0\n");
    EXPECT_NE(text.find("Current Raid-File Settings"), std::string::npos);
    EXPECT_EQ(settings.raid_description(), "RAID 3 with 4 paths");
    EXPECT_EQ(settings.bytes_per_seek(), 3 * mebibyte);
}

TEST(SwapSettings, BytesPerSeekAreEditedByOption10) {
    SwapSettings settings;
    qmp::RaidSettings raid;
    raid.set_raid0({"", ""});
    settings.set_raid(raid);
    answer(settings, 10, "1000\n");
    EXPECT_EQ(settings.bytes_per_seek(), 4096u);
    answer(settings, 10, "0\n");
    EXPECT_EQ(settings.bytes_per_seek(), 2 * mebibyte);
}

TEST(SwapSettings, MemoryIsEditedByOption11) {
    SwapSettings settings;
    answer(settings, 11, "1\n3GB\n0\n");
    EXPECT_EQ(settings.memory_cap(), std::uint64_t{3} << 30);
}

TEST(SwapSettings, OtherOptionsDoNothing) {
    SwapSettings settings;
    const std::string before = settings.print_settings();
    for (std::int64_t option = 12; option < 20; ++option) EXPECT_EQ(answer(settings, option, ""), "");
    EXPECT_EQ(settings.print_settings(), before);
}

TEST(SwapSettings, ShowsWhatItNeeds) {
    SwapSettings settings;
    settings.set_memory_cap(1 << 30);
    settings.set_decimal_digits(1000);
    settings.set_hexadecimal_digits(0);
    EXPECT_EQ(
        printed_by([&] { EXPECT_EQ(settings.print_menu_options(), 1u << 30); }),
        "  9     Swap Configuration:   Not Set - Use default path.\n"
        "  10     Bytes/Seek           1,048,576 (1.00 MiB) for entire drive array\n"
        "  11     Memory Needed        1,073,741,824 (1.00 GiB)\n"
        "        Disk Needed           not available in this build yet  +  1,022 (1.00 KiB) for output\n\n");
    qmp::RaidSettings raid;
    raid.set_raid0({""});
    settings.set_raid(raid);
    EXPECT_NE(printed_by([&] {
                  settings.print_menu_options();
              }).find("  9     Swap Configuration:   One path at: ** Default Path **\n"),
              std::string::npos);
}

TEST(SwapSettings, CannotRunYet) {
    const char* text = "Swap Mode is not available in this build yet.";
    const SwapSettings settings;
    EXPECT_FALSE(settings.can_run());
    EXPECT_EQ(settings.obstacle(), text);
    // Without it the program would end.
    if (!qmp::has_manage_volume_privilege()) GTEST_SKIP() << "needs the volume privilege";
    EXPECT_EQ(message_of<qmp::InvalidParametersException>([&] { settings.run(); }), text);
}

}  // namespace
}  // namespace kelvara
