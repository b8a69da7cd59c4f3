// What a start makes of a checkpoint file in the current directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/build_identity.h"
#include "sessions/checkpoint_file.h"
#include "support/child_process.h"
#include "support/folder.h"

namespace kelvara {
namespace {

using kelvara_test::ChildEnd;

constexpr const char* found =
    "\n\n"
    "An unfinished computation has been found.\n"
    "Resuming...\n"
    "\n\n\n";

class ResumeCheck : public testing::Test {
  protected:
    // The program starts with an action that says so.
    ChildEnd start() const {
        kelvara_test::ChildSettings settings;
        settings.folder = folder_.path();
        return kelvara_test::run_child({KELVARA_SHELL_DRIVER, "skip-warnings", "echo:acted"}, settings);
    }

    void put(const std::string& content) const { std::ofstream(path(), std::ios::binary) << content; }
    std::filesystem::path path() const { return folder_.native(std::string(checkpoint_file_name)); }

    // The file is refused with this text, and nothing else happens, to the file least of all.
    void expect_refused(const std::string& content, const std::string& text, int exit_code) const {
        put(content);
        const ChildEnd end = start();
        EXPECT_NE(end.output.find(found), std::string::npos) << end.output;
        EXPECT_NE(end.output.find(text), std::string::npos) << end.output;
        EXPECT_EQ(end.output.find("acted"), std::string::npos) << end.output;
        EXPECT_EQ(end.exit_code, exit_code);
        std::ifstream file(path(), std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), content);
    }

    static std::string checkpoint(const std::string& version) {
        Checkpoint checkpoint;
        checkpoint.program_version = version;
        checkpoint.sections[checkpoint_settings_section] = "Constant          :\tpi\r\n";
        return checkpoint_text(checkpoint, CheckpointSealer::of_this_build());
    }

    const kelvara_test::TemporaryFolder folder_;
};

TEST_F(ResumeCheck, WithoutTheFileNothingIsSaid) {
    const ChildEnd end = start();
    EXPECT_EQ(end.output.find("unfinished"), std::string::npos) << end.output;
    EXPECT_EQ(end.output.find("checkpoint"), std::string::npos) << end.output;
    EXPECT_NE(end.output.find("acted"), std::string::npos) << end.output;
}

// What a crash between two steps of a commit leaves is complete, but its user has to rename it.
TEST_F(ResumeCheck, ANewFileByItselfIsNotLookedFor) {
    const std::string name = "Kelvara Checkpoint File (new).txt";
    std::ofstream(folder_.native(name), std::ios::binary) << checkpoint(program_version());
    EXPECT_NE(start().output.find("acted"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(folder_.native(name)));
}

TEST_F(ResumeCheck, AGoodFileIsLeftForABuildThatCanResumeIt) {
    expect_refused(checkpoint(program_version()),
                   "\nException Encountered: InvalidParametersException\n\n"
                   "Resuming a computation is not available in this build yet.\n",
                   0);
}

TEST_F(ResumeCheck, FilesThatCannotBeUsedAreFatal) {
    expect_refused("", "\n\n\nHeader not found.\n", 1);
    expect_refused("Some other text.\r\n", "\n\n\nHeader not found.\n", 1);
    expect_refused(checkpoint("0.0.0 Build 1 (Linux/none)"),
                   "\n\n\nCannot resume computation. The version does not match.\n", 1);
    std::string changed = checkpoint(program_version());
    changed.replace(changed.rfind("pi"), 2, "e");
    expect_refused(changed, "\n\n\nChecksum Mismatch. Checkpoint file is corrupted.\n", 1);
}

// Left unread, but not in silence: whoever expects a computation to go on learns why it does not.
TEST_F(ResumeCheck, WhatCannotBeReadIsTold) {
    std::filesystem::create_directory(path());
    const ChildEnd end = start();
    EXPECT_NE(end.output.find("Kelvara Checkpoint File.txt"), std::string::npos) << end.output;
    EXPECT_TRUE(std::filesystem::is_directory(path()));
}

}  // namespace
}  // namespace kelvara
