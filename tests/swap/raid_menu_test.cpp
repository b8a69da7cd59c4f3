// The dialogues of the swap configuration, fed from a file, and its form on the command line.
#include "swap/raid_menu.h"

#include <gtest/gtest.h>

#include "config/text_cursor.h"
#include "errors/file_exception.h"
#include "support/console.h"
#include "support/folder.h"
#include "support/messages.h"
#include "swap/raid_listing.h"

namespace {

using kelvara_test::FedInput;
using kelvara_test::message_of;
using kelvara_test::printed_by;
using qmp::RaidSettings;
using qmp::RaidType;

constexpr const char* rule = "============================================================\n";
constexpr const char* options =
    "1  -  Quick Configure:  Default Path Only\n"
    "2  -  Quick Configure:  RAID 0  (No Redundancy)\n"
    "3  -  Quick Configure:  RAID 3  (Tolerate 1 Drive Failure)\n\n"
    "Manual Configure Hybrid RAID:\n"
    "4  -      Add a new Group\n"
    "5  -      Add a new Drive/Path\n\n"
    "6  -  Set per-drive Buffer Size\n"
    "7  -  Clear All and Start Over\n\n";

class RaidMenu : public testing::Test {
  protected:
    // The answers, and then 0 to leave.
    std::string edit(const std::string& answers) {
        return printed_by([&] {
            FedInput input((answers + "0\n").c_str());
            qmp::edit_raid_settings(settings_, std::nullopt);
        });
    }
    bool shows(const std::string& text, const std::string& part) const {
        return text.find(part) != std::string::npos;
    }
    std::string summary() const { return qmp::raid_summary(settings_); }
    std::string lines(std::uint64_t count) const {
        std::string text;
        for (std::uint64_t line = 0; line < count; ++line) text += folder_.path() + "\n";
        return text;
    }

    kelvara_test::TemporaryFolder folder_;
    RaidSettings settings_;
};

TEST_F(RaidMenu, CannotBeLeftWithoutAValidConfiguration) {
    const std::string text = edit("0\n8\n-1\n1\n");
    const std::string empty = std::string(rule) +
                              "\nCurrent Raid-File Settings\n\n"
                              "Total Groups        0\n"
                              "Empty - You must have at least one group.\n\n" +
                              options +
                              "The current configuration is invalid.\n\noption: option: option: option: \n";
    EXPECT_EQ(text.substr(0, empty.size()), empty);
    EXPECT_TRUE(text.ends_with(options + std::string("0  -  Done\n\noption: \n"))) << text;
}

TEST_F(RaidMenu, TheDefaultPathAlone) {
    const std::string text = edit("1\n");
    EXPECT_EQ(summary(), "One path at: ** Default Path **");
    EXPECT_TRUE(shows(text, std::string(rule) +
                                "\nCurrent Raid-File Settings\n\n"
                                "Total Groups        1\n"
                                "Block Size          262,144 ( 256 KiB)\n"
                                "Buffer Size         67,108,864 (64.0 MiB) ( ~ 64.0 MiB / drive )\n\n"
                                "Group 0:\n"
                                "    1 drive with No Redundancy. (no fault tolerance)\n\n"
                                "    Bytes Needed Per Path   Unknown\n"
                                "    Group Block Size        262,144 ( 256 KiB)\n"
                                "    File Block Size         262,144 ( 256 KiB)\n\n"
                                "        ** Default Path **   ( Status: ok )\n\n"))
        << text;
}

TEST_F(RaidMenu, QuickRaid0) {
    const std::string text = edit("2\n0\n65\n2\n" + folder_.path() + "\n\n");
    EXPECT_TRUE(shows(text,
                      "Configure RAID 0\n\nHow many drives? (min = 1, max = 64)\nDrives: Drives: Drives: \n"
                      "Enter the Paths. (Blank path will use the default path.)\nPath 0: Path 1: "))
        << text;
    ASSERT_EQ(settings_.groups().size(), 2u);
    EXPECT_EQ(settings_.groups()[0].paths[0].folder, folder_.path());
    EXPECT_EQ(settings_.groups()[1].paths[0].folder, "");
    EXPECT_EQ(summary(), "RAID 0 with 2 paths");
}

TEST_F(RaidMenu, QuickRaid3) {
    const std::string text = edit("3\n1\n9\n3\n" + lines(3));
    EXPECT_TRUE(shows(text,
                      "Configure RAID 3\n\nHow many drives? (min = 2, max = 8)\nDrives: Drives: Drives: \n"
                      "Enter the Paths. (Blank path will use the default path.)\nPath 0: Path 1: Path 2: "))
        << text;
    EXPECT_EQ(summary(), "RAID 3 with 3 paths");
    EXPECT_TRUE(shows(text, "    3 drives with Single-Bit Parity. (tolerate 1 drive failure)\n")) << text;
}

TEST_F(RaidMenu, APathThatCannotBeUsedIsToldAndChangesNothing) {
    EXPECT_TRUE(shows(edit("2\n1\n" + folder_.path("missing") + "\n1\n"), "\nThis path is not writable.\n"));
    EXPECT_EQ(summary(), "One path at: ** Default Path **");
    EXPECT_TRUE(shows(edit("5\n0\n" + folder_.path("missing") + "\n"), "\nThis path is not writable.\n"));
    EXPECT_EQ(settings_.path_count(), 1u);
}

TEST_F(RaidMenu, GroupsAndPathsOneByOne) {
    const std::string text =
        edit("5\n4\n2\n4\n1\n5\n1\n0\n" + lines(1) + "5\n0\n" + lines(1) + "4\n0\n5\n1\n\n");
    EXPECT_TRUE(shows(text, "Add a new Path\n\n\nPlease add a group first.\n")) << text;
    EXPECT_TRUE(shows(text,
                      "Add a new Group\n\nSelect Raid Mode:\n\n"
                      "0  -  RAID 0  ( Multiple Drives - No Redundancy. )\n"
                      "1  -  RAID 3  ( Tolerate up to 1 drive failure. )\n"
                      "2  -  Cancel\n\nchoice: "))
        << text;
    EXPECT_TRUE(shows(text,
                      "Add a new Path\n\nWhich Group: Which Group: \n"
                      "Enter Path. (Blank path will use the default path.)\nPath : "))
        << text;
    EXPECT_TRUE(shows(text, "        Empty - You must have at least two paths.\n\n")) << text;
    EXPECT_TRUE(shows(text, "        Empty - You must have at least one path.\n\n")) << text;
    EXPECT_EQ(summary(), "Custom Configuration with 3 paths");
}

TEST_F(RaidMenu, NoMoreThan64Groups) {
    ASSERT_EQ(settings_.set_raid0(std::vector<std::string>(64)), "");
    EXPECT_TRUE(shows(edit("4\n"), "Add a new Group\n\n\nThe maximum number of groups has been exceeded.\n"));
    EXPECT_EQ(settings_.groups().size(), 64u);
}

TEST_F(RaidMenu, NoMoreThan8PathsOfAGroup) {
    ASSERT_EQ(settings_.set_raid3(std::vector<std::string>(8)), "");
    EXPECT_TRUE(shows(edit("5\n0\n\n"), "\nThe maximum number of paths per group has been exceeded.\n"));
    EXPECT_EQ(settings_.path_count(), 8u);
}

TEST_F(RaidMenu, TheBufferSize) {
    const std::string text = edit("1\n6\n128MB\n");
    EXPECT_TRUE(shows(text,
                      "Configure Buffer Size\n\n"
                      "Each path needs a separate buffer for disk I/O.\n\n"
                      "This buffer is used for sector alignment and raid striping. Larger buffers\n"
                      "may increase efficiency, but will also use more memory.\n\n"
                      "The default size is 64MB per logical path. You may wish to increase this\n"
                      "value if there are multiple physical drives under each logical path.\n\n"
                      "Enter the buffer size for each path: (e.g. 64MB, 128MB, etc...)\n"
                      "Bytes: "))
        << text;
    EXPECT_EQ(settings_.buffer_per_file(), 128u << 20);
    edit("6\n1\n");
    EXPECT_EQ(settings_.buffer_per_file(), 1u << 20);
}

TEST_F(RaidMenu, ClearingStartsOver) {
    edit("3\n2\n\n\n6\n1M\n7\n1\n");
    EXPECT_EQ(summary(), "One path at: ** Default Path **");
    EXPECT_EQ(settings_.buffer_per_file(), RaidSettings::default_buffer);
}

TEST_F(RaidMenu, Summaries) {
    EXPECT_EQ(summary(), "Invalid Configuration.");
    settings_.add_group(RaidType::raid0);
    EXPECT_EQ(summary(), "Invalid Configuration.");
    settings_.add_path(0, folder_.path());
    EXPECT_EQ(summary(), "One path at: " + folder_.path());
    settings_.add_path(0, "");
    EXPECT_EQ(summary(), "RAID 0 with 2 paths");
    settings_.add_group(RaidType::raid0);
    settings_.add_path(1, "");
    EXPECT_EQ(summary(), "Custom Configuration with 3 paths");
    settings_.add_group(RaidType::raid3);
    EXPECT_EQ(summary(), "Invalid Configuration.");
    settings_.set_raid3({"", ""});
    EXPECT_EQ(summary(), "RAID 3 with 2 paths");
}

TEST_F(RaidMenu, ListsTheHealthOfPathsAndWhatTheyHaveToHold) {
    qmp::TextCursor cursor(
        "Raid-File 0/3 Settings\t\r\nfiles:\t1\r\nbuffer:\t0\r\ntotal:\t0\r\nDrive:\t0\r\ntype:\t1\r\n"
        "files:\t4\r\nfailed:\t1\r\nblock:\t0\r\nbuffer:"
        "\t0\r\na\ta\r\ns\t0\r\nb\tb\r\ns\t1\r\nc\tc\r\ns\t2\r\n"
        "d\td\r\ns\t-1\r\n");
    settings_.load_settings(cursor);
    const std::string text = printed_by([&] { qmp::print_raid_settings(settings_, 3 * 1024); });
    EXPECT_TRUE(shows(text,
                      "        a   ( Status: ok )\n"
                      "        b   ( Status: 1 error )\n"
                      "        c   ( Status: 2 errors )\n"
                      "        d   ( Status: Failed )\n"))
        << text;
    EXPECT_TRUE(shows(text, "    Bytes Needed Per Path   1,024 (1.00 KiB)\n")) << text;
}

class RaidArguments : public RaidMenu {
  protected:
    std::string take(std::vector<std::string> arguments, const std::string& mode = "") {
        arguments.insert(arguments.begin(), "kelvara");
        kelvara::CommandLine command_line(arguments);
        std::string error = qmp::read_raid_arguments(settings_, mode, command_line);
        rest_ = command_line.has_more() ? command_line.current() : "";
        return error;
    }
    std::string missing(const std::vector<std::string>& arguments, const std::string& mode = "") {
        try {
            take(arguments, mode);
        } catch (const qmp::CommandLine::CommandLineException& exception) {
            return exception.what();
        }
        return "nothing was thrown";
    }
    std::string rest_;
};

TEST_F(RaidArguments, AModeAndItsFolders) {
    EXPECT_EQ(take({"raid0", folder_.path(), "", "-dec:1000"}), "");
    EXPECT_EQ(summary(), "RAID 0 with 2 paths");
    EXPECT_EQ(rest_, "-dec:1000");
    EXPECT_EQ(take({folder_.path(), folder_.path(), folder_.path()}, "raid3"), "");
    EXPECT_EQ(summary(), "RAID 3 with 3 paths");
    EXPECT_EQ(rest_, "");
}

TEST_F(RaidArguments, AMissingArgument) {
    EXPECT_EQ(missing({}), "Expected more parameters.");
    EXPECT_EQ(missing({"raid0"}), "Expected more parameters.");
    EXPECT_EQ(missing({}, "raid3"), "Expected more parameters.");
    // The next option is neither a mode nor a folder.
    EXPECT_EQ(missing({"-dec:1000"}), "Expected more parameters.");
    EXPECT_EQ(missing({"-dec:1000"}, "raid0"), "Expected more parameters.");
    EXPECT_TRUE(settings_.groups().empty());
}

TEST_F(RaidArguments, AnotherMode) {
    EXPECT_EQ(take({"raid5", "a"}), "Unrecognized mode");
    EXPECT_EQ(take({"a"}, "RAID0"), "Unrecognized mode");
}

TEST_F(RaidArguments, FoldersThatCannotBeUsed) {
    EXPECT_EQ(take({folder_.path("missing")}, "raid0"), "This path is not writable.");
    EXPECT_EQ(message_of<qmp::DiskRaid0::Raid0Exception>(
                  [&] { take(std::vector<std::string>(65, folder_.path()), "raid0"); }),
              "There is a limit of 64 paths for RAID0.");
    EXPECT_EQ(message_of<qmp::R03::Raid03Exception>(
                  [&] { take(std::vector<std::string>(9, folder_.path()), "raid3"); }),
              "There is a limit of 8 paths for RAID3.");
    EXPECT_TRUE(settings_.groups().empty());
}

}  // namespace
