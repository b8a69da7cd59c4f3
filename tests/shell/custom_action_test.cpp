// The options of the "custom" action that the modes treat differently.
#include "shell/custom_action.h"

#include <gtest/gtest.h>

#include "config/command_line.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/privileges.h"
#include "support/console.h"
#include "support/folder.h"
#include "support/messages.h"

namespace {

using kelvara_test::message_of;
using kelvara_test::printed_by;

constexpr const char* not_yet = "Swap Mode is not available in this build yet.";

class ModeOptions : public testing::Test {
  protected:
    // "custom pi", the options, and small digit files in a folder.
    void run(const std::vector<std::string>& options) const {
        std::vector<std::string> arguments = {"kelvara", "custom", "pi", "-o", folder_.path()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        kelvara::CommandLine command_line(arguments);
        printed_by([&] { kelvara::run_custom_action(command_line); });
    }
    std::string refusal(const std::vector<std::string>& options) const {
        return message_of<qmp::InvalidParametersException>([&] { run(options); });
    }
    // The answer of a Swap Mode that has taken every option.
    std::string answer(const std::vector<std::string>& options) const { return refusal(options); }

    kelvara_test::TemporaryFolder folder_;
};

// Where swap files cannot be used at all, the program ends before it can answer.
class SwapModeAction : public ModeOptions {
  protected:
    void SetUp() override {
        if (!qmp::has_manage_volume_privilege()) GTEST_SKIP() << "needs the volume privilege";
    }
};

TEST_F(ModeOptions, OptionsOfSwapModeAreNotForRamOnly) {
    for (const char* key : {"-M", "-minIO", "-swap"}) {
        const std::string text = std::string("Option ") + key + " is not supported for this mode.";
        EXPECT_EQ(refusal({std::string(key) + ":4G"}), text);
        EXPECT_EQ(refusal({"-mode:ram", key}), text);
        EXPECT_EQ(refusal({"-mode:swap", "-mode:ram", std::string(key) + ":4G"}), text);
    }
}

TEST_F(ModeOptions, OtherModesAreRefused) {
    for (const char* mode : {"-mode:disk", "-mode:Swap", "-mode:", "-mode"})
        EXPECT_EQ(refusal({mode}), std::string("Invalid Command: ") + mode);
}

TEST_F(ModeOptions, OptionsOfSwapModeAreCheckedOneByOne) {
    EXPECT_EQ(refusal({"-mode:swap", "-swap:raid5", folder_.path()}), "Unrecognized mode");
    EXPECT_EQ(refusal({"-mode:swap", "-swap", "RAID0", folder_.path()}), "Unrecognized mode");
    EXPECT_EQ(refusal({"-mode:swap", "-swap:raid0", folder_.path("missing")}), "This path is not writable.");
    EXPECT_EQ(refusal({"-mode:swap", "-MA:heap"}), "Invalid Memory Allocator: heap");
    EXPECT_EQ(refusal({"-mode:swap", "-PF:openmp"}), "Invalid Parallel Framework: openmp");
    EXPECT_EQ(refusal({"-mode:swap", "-TD:0"}), "Task decomposition must be between 1 and 65,536.");
    EXPECT_EQ(refusal({"-mode:swap", "-dec:99"}), "Computation size must be at least 100 decimal digits.");
    EXPECT_EQ(refusal({"-mode:swap", "-hex:50"}), "Computation size must be at least 100 decimal digits.");
    EXPECT_EQ(refusal({"-mode:swap", "-algorithm:machin"}), "Invalid Algorithm: machin");
    EXPECT_EQ(refusal({"-mode:swap", "-C:1m"}), "Too few digits to compress.");
}

TEST_F(ModeOptions, TooManySwapFolders) {
    std::vector<std::string> options(66, folder_.path());
    options[0] = "-mode:swap";
    options.insert(options.begin() + 1, "-swap:raid0");
    EXPECT_EQ(message_of<qmp::DiskRaid0::Raid0Exception>([&] { run(options); }),
              "There is a limit of 64 paths for RAID0.");
    options[1] = "-swap:raid3";
    EXPECT_EQ(message_of<qmp::R03::Raid03Exception>([&] { run(options); }),
              "There is a limit of 8 paths for RAID3.");
}

TEST_F(ModeOptions, AMissingSwapConfiguration) {
    for (const std::vector<std::string>& options : {std::vector<std::string>{"-mode:swap", "-swap"},
                                                    {"-mode:swap", "-swap:raid0"},
                                                    {"-mode:swap", "-swap", "raid3"}}) {
        try {
            run(options);
            ADD_FAILURE() << options.back();
        } catch (const qmp::CommandLine::CommandLineException& exception) {
            EXPECT_STREQ(exception.what(), "Expected more parameters.");
        }
    }
}

TEST_F(ModeOptions, AMissingFolderIsToldBeforeAnythingElse) {
    EXPECT_EQ(message_of<qmp::FileIO::FileException>([&] {
                  run({"-mode:swap", "-o", folder_.path("missing")});
              }),
              "The folder for the digit files does not exist.");
}

TEST_F(SwapModeAction, TakesEveryOptionAndIsNotAvailableYet) {
    EXPECT_EQ(answer({"-mode:swap"}), not_yet);
    EXPECT_EQ(answer({"-dec:1m", "-hex:0", "-mode:swap", "-M:4G", "-minIO:256K", "-swap:raid0",
                      folder_.path(), "", "-MA:malloc", "-PF:none", "-TD:3", "-C:0"}),
              not_yet);
    EXPECT_EQ(
        answer({"-mode:swap", "-swap", "raid3", folder_.path(), folder_.path(), folder_.path(), "-dec:1000"}),
        not_yet);
    EXPECT_EQ(answer({"-mode:swap", "-swap:raid0", folder_.path(), "-dec:99"}),
              "Computation size must be at least 100 decimal digits.");
}

// What was chosen before the mode counts for it.
TEST_F(ModeOptions, TheOrderOfSizeAndModeDoesNotMatter) {
    EXPECT_EQ(refusal({"-dec:2m", "-mode:swap", "-C:1000"}), "Too few digits for file.");
    EXPECT_EQ(refusal({"-mode:swap", "-dec:2m", "-C:1000"}), "Too few digits for file.");
}

}  // namespace
