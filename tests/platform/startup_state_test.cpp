#include "platform/startup_state.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/fatal.h"

namespace kelvara {
namespace {

TEST(StartupState, TheDirectoryKeepsItsSeparator) {
    EXPECT_EQ(directory_of("/usr/bin/kelvara"), "/usr/bin/");
    EXPECT_EQ(directory_of("C:\\Programs\\kelvara.exe"), "C:\\Programs\\");
    EXPECT_EQ(directory_of("C:\\Programs/kelvara.exe"), "C:\\Programs/");
    EXPECT_EQ(directory_of("/kelvara"), "/");
    EXPECT_EQ(directory_of("folder/"), "folder/");
    EXPECT_EQ(directory_of("kelvara"), "");
    EXPECT_EQ(directory_of(""), "");
}

TEST(StartupState, BeginsWithTheDefaults) {
    const StartupState state;
    EXPECT_FALSE(state.console_is_fresh);
    EXPECT_EQ(state.pause_mode, 0);
    EXPECT_FALSE(state.personal_data_shown);
    EXPECT_FALSE(state.skip_warnings);
}

TEST(StartupState, RecordsTheStart) {
    record_program_start();
    const StartupState& state = startup_state();
    EXPECT_FALSE(state.arguments.empty());
    EXPECT_FALSE(program_directory().empty());
    EXPECT_EQ(state.program_path.compare(0, program_directory().size(), program_directory()), 0);
    EXPECT_NE(state.program_path.find("platform_tests"), std::string::npos);
    EXPECT_EQ(program_directory().find("platform_tests"), std::string::npos);
}

#if GTEST_HAS_DEATH_TEST
TEST(StartupStateDeathTest, AMissingPathIsFatal) {
    EXPECT_FATAL(record_program_path(std::nullopt), "^\nFailed to retrieve path.\n$");
}
#endif

}  // namespace
}  // namespace kelvara
