// Groups of swap paths: their limits, their block sizes and buffers, and what follows from them.
#include "swap/raid_settings.h"

#include <gtest/gtest.h>

#include <fstream>

#include "errors/file_exception.h"
#include "support/folder.h"
#include "support/messages.h"

namespace {

using kelvara_test::message_of;
using qmp::RaidSettings;
using qmp::RaidType;

constexpr std::uint64_t mebibyte = 1 << 20;

class Raid : public testing::Test {
  protected:
    // A group of so many paths, all in the same folder.
    void add(RaidType type, std::uint64_t paths) {
        ASSERT_EQ(settings_.add_group(type), "");
        for (std::uint64_t path = 0; path < paths; ++path)
            ASSERT_EQ(settings_.add_path(settings_.groups().size() - 1, folder_.path()), "");
    }
    std::uint64_t file_block(std::uint64_t group) const { return settings_.groups()[group].file_block_size; }
    std::uint64_t group_block(std::uint64_t group) const {
        return settings_.groups()[group].group_block_size();
    }
    std::vector<std::string> folders(std::uint64_t count) const {
        return std::vector<std::string>(count, folder_.path());
    }

    kelvara_test::TemporaryFolder folder_;
    RaidSettings settings_;
};

TEST_F(Raid, IsNotSetAtFirst) {
    EXPECT_TRUE(settings_.groups().empty());
    EXPECT_FALSE(settings_.is_valid());
    EXPECT_EQ(settings_.path_count(), 0u);
    EXPECT_EQ(settings_.buffer_per_file(), 64 * mebibyte);
    EXPECT_EQ(settings_.buffer_total(), 64 * mebibyte);
}

TEST_F(Raid, BlocksOfOneGroupOfFourPaths) {
    add(RaidType::raid0, 4);
    EXPECT_EQ(group_block(0), 1'048'576u);
    EXPECT_EQ(file_block(0), 262'144u);
}

TEST_F(Raid, BlocksOfAloneRaid3) {
    add(RaidType::raid3, 3);
    EXPECT_EQ(group_block(0), 524'288u);
    EXPECT_EQ(file_block(0), 262'144u);
}

TEST_F(Raid, BlocksOfARaid3BesideASinglePath) {
    add(RaidType::raid3, 3);
    add(RaidType::raid0, 1);
    EXPECT_EQ(group_block(0), 524'288u);
    EXPECT_EQ(group_block(1), 524'288u);
    EXPECT_EQ(file_block(0), 262'144u);
    EXPECT_EQ(file_block(1), 524'288u);
}

TEST_F(Raid, BlocksOfThreeAndTwoDataPaths) {
    add(RaidType::raid0, 3);
    add(RaidType::raid3, 3);
    EXPECT_EQ(file_block(0), 262'144u);
    EXPECT_EQ(file_block(1), 393'216u);
    EXPECT_EQ(group_block(0), 786'432u);
    EXPECT_EQ(group_block(1), 786'432u);
}

TEST_F(Raid, AGroupWithoutDataPathsTakesNoPart) {
    add(RaidType::raid0, 2);
    add(RaidType::raid3, 1);
    add(RaidType::raid0, 0);
    EXPECT_EQ(file_block(0), 262'144u);
    EXPECT_EQ(file_block(1), 0u);
    EXPECT_EQ(group_block(1), 0u);
    EXPECT_EQ(group_block(2), 0u);
    EXPECT_FALSE(settings_.is_valid());
}

// Whatever the groups, they agree in their block, in whole sectors of each path.
TEST_F(Raid, BlocksAgree) {
    for (std::uint64_t first = 1; first <= RaidSettings::most_paths; ++first) {
        for (std::uint64_t second = 2; second <= RaidSettings::most_paths; ++second) {
            settings_.clear();
            add(RaidType::raid0, first);
            add(RaidType::raid3, second);
            EXPECT_EQ(group_block(0), group_block(1));
            EXPECT_EQ(group_block(0) % (first * 4096), 0u);
            EXPECT_EQ(group_block(1) % ((second - 1) * 4096), 0u);
            EXPECT_GE(std::min(file_block(0), file_block(1)), 262'144u) << first << ", " << second;
            // Half of it would be too little.
            EXPECT_LT(std::min(file_block(0), file_block(1)), 840u * 4096) << first << ", " << second;
        }
    }
}

TEST_F(Raid, BuffersAreWholeBlocksOfEveryPath) {
    add(RaidType::raid0, 3);
    add(RaidType::raid3, 3);
    settings_.set_buffer_per_file(10 * mebibyte);
    EXPECT_EQ(settings_.buffer_per_file(), 10 * mebibyte);
    EXPECT_EQ(settings_.groups()[0].blocks_per_buffer, 40u);
    EXPECT_EQ(settings_.groups()[1].blocks_per_buffer, 26u);
    EXPECT_EQ(settings_.buffer_total(), 3 * 40 * 262'144u + 3 * 26 * 393'216u);
    // A path that is added later gets a buffer of that size, too.
    ASSERT_EQ(settings_.add_path(0, folder_.path()), "");
    EXPECT_EQ(settings_.buffer_per_file(), 10 * mebibyte);
    EXPECT_EQ(settings_.groups()[0].blocks_per_buffer, 40u);
}

TEST_F(Raid, BuffersHoldAtLeastOneBlock) {
    add(RaidType::raid0, 7);
    add(RaidType::raid0, 1);
    settings_.set_buffer_per_file(1);
    EXPECT_EQ(settings_.buffer_per_file(), mebibyte);
    EXPECT_EQ(file_block(1), 7 * 262'144u);
    EXPECT_EQ(settings_.groups()[1].blocks_per_buffer, 1u);
    EXPECT_EQ(settings_.buffer_total(), 7 * 4 * 262'144u + 7 * 262'144u);
}

TEST_F(Raid, BuffersAreKeptWithinTheirLimits) {
    settings_.set_buffer_per_file(0);
    EXPECT_EQ(settings_.buffer_per_file(), mebibyte);
    EXPECT_EQ(settings_.buffer_total(), mebibyte);
    settings_.set_buffer_per_file(UINT64_MAX);
    EXPECT_EQ(settings_.buffer_per_file(), RaidSettings::largest_buffer);
    for (std::uint64_t group = 0; group < RaidSettings::most_groups; ++group)
        ASSERT_EQ(settings_.add_group(RaidType::raid0), "");
    for (std::uint64_t group = 0; group < RaidSettings::most_groups; ++group)
        ASSERT_EQ(settings_.add_path(group, folder_.path()), "");
    EXPECT_EQ(settings_.buffer_total(), RaidSettings::most_groups * RaidSettings::largest_buffer);
}

TEST_F(Raid, HasAtMost64Groups) {
    for (std::uint64_t group = 0; group < 64; ++group) EXPECT_EQ(settings_.add_group(RaidType::raid3), "");
    EXPECT_EQ(settings_.add_group(RaidType::raid0), "The maximum number of groups has been exceeded.");
    EXPECT_EQ(settings_.groups().size(), 64u);
}

TEST_F(Raid, HasAtMost8PathsPerGroup) {
    add(RaidType::raid0, 8);
    EXPECT_EQ(settings_.add_path(0, folder_.path()),
              "The maximum number of paths per group has been exceeded.");
    EXPECT_EQ(settings_.path_count(), 8u);
}

TEST_F(Raid, PathsMustBeWritable) {
    std::ofstream(folder_.native("file")) << "no folder";
    add(RaidType::raid0, 0);
    EXPECT_EQ(settings_.add_path(0, folder_.path("missing")), "This path is not writable.");
    EXPECT_EQ(settings_.add_path(0, folder_.path("file")), "This path is not writable.");
    EXPECT_EQ(settings_.path_count(), 0u);
}

TEST_F(Raid, AnEmptyFolderIsTheDefaultPath) {
    EXPECT_EQ(settings_.set_raid0({""}), "");
    ASSERT_EQ(settings_.path_count(), 1u);
    EXPECT_EQ(settings_.groups()[0].paths[0].folder, "");
    EXPECT_TRUE(settings_.is_valid());
}

TEST_F(Raid, QuickRaid0IsAGroupForEachFolder) {
    add(RaidType::raid3, 5);
    settings_.set_buffer_per_file(mebibyte);
    EXPECT_EQ(settings_.set_raid0(folders(64)), "");
    ASSERT_EQ(settings_.groups().size(), 64u);
    for (const qmp::RaidGroup& group : settings_.groups()) {
        EXPECT_EQ(group.type, RaidType::raid0);
        ASSERT_EQ(group.paths.size(), 1u);
        EXPECT_EQ(group.paths[0].folder, folder_.path());
        EXPECT_EQ(group.paths[0].status, 0);
    }
    EXPECT_EQ(settings_.buffer_per_file(), 64 * mebibyte);
    EXPECT_EQ(settings_.buffer_total(), 64 * 64 * mebibyte);
}

TEST_F(Raid, QuickRaid0TakesAtMost64Folders) {
    add(RaidType::raid0, 2);
    EXPECT_EQ(message_of<qmp::DiskRaid0::Raid0Exception>([&] { settings_.set_raid0(folders(65)); }),
              "There is a limit of 64 paths for RAID0.");
    EXPECT_EQ(settings_.path_count(), 2u);
}

TEST_F(Raid, QuickRaid3IsOneGroup) {
    add(RaidType::raid0, 1);
    settings_.set_buffer_per_file(mebibyte);
    EXPECT_EQ(settings_.set_raid3(folders(8)), "");
    ASSERT_EQ(settings_.groups().size(), 1u);
    EXPECT_EQ(settings_.groups()[0].type, RaidType::raid3);
    EXPECT_EQ(settings_.groups()[0].data_paths(), 7u);
    EXPECT_EQ(settings_.buffer_per_file(), 64 * mebibyte);
}

TEST_F(Raid, QuickRaid3TakesAtMost8Folders) {
    EXPECT_EQ(message_of<qmp::R03::Raid03Exception>([&] { settings_.set_raid3(folders(9)); }),
              "There is a limit of 8 paths for RAID3.");
    EXPECT_TRUE(settings_.groups().empty());
}

TEST_F(Raid, AQuickConfigurationThatFailsChangesNothing) {
    add(RaidType::raid0, 2);
    EXPECT_EQ(settings_.set_raid0({folder_.path(), folder_.path("missing")}), "This path is not writable.");
    EXPECT_EQ(settings_.set_raid3({folder_.path("missing")}), "This path is not writable.");
    EXPECT_EQ(settings_.path_count(), 2u);
    EXPECT_EQ(settings_.groups().size(), 1u);
}

TEST_F(Raid, IsValidWhenEveryGroupHasDataPaths) {
    add(RaidType::raid0, 1);
    EXPECT_TRUE(settings_.is_valid());
    add(RaidType::raid3, 1);
    EXPECT_FALSE(settings_.is_valid());
    ASSERT_EQ(settings_.add_path(1, folder_.path()), "");
    EXPECT_TRUE(settings_.is_valid());
    settings_.clear();
    EXPECT_FALSE(settings_.is_valid());
}

TEST_F(Raid, DefaultBytesPerSeekAreScaledByGroupsAndTheWidestOne) {
    EXPECT_EQ(settings_.default_bytes_per_seek(), mebibyte);
    add(RaidType::raid3, 1);
    EXPECT_EQ(settings_.default_bytes_per_seek(), mebibyte);
    settings_.clear();
    add(RaidType::raid0, 3);
    add(RaidType::raid0, 2);
    EXPECT_EQ(settings_.default_bytes_per_seek(), 6'291'456u);
    add(RaidType::raid3, 5);
    EXPECT_EQ(settings_.default_bytes_per_seek(), 12 * mebibyte);
}

}  // namespace
