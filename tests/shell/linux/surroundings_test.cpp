// The program in surroundings that lack something: streams, readers, a folder, a terminal's name, /proc.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/child_process.h"
#include "support/folder.h"
#include "support/pseudo_terminal.h"
#include "support/sanitized.h"

namespace kelvara {
namespace {

using kelvara_test::ChildEnd;
using kelvara_test::ChildSettings;
using kelvara_test::ChildStream;
using kelvara_test::run_child;

const std::string driver = std::string("'") + KELVARA_SHELL_DRIVER + "' skip-warnings ";

ChildEnd shell(const std::string& script) {
    return run_child({"/bin/sh", "-c", script});
}

class SurroundingsTest : public testing::Test {
  protected:
    std::string content(const std::string& name) const {
        std::ifstream file(folder_.native(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::size_t files() const {
        const std::filesystem::directory_iterator entries(folder_.native(""));
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

    const kelvara_test::TemporaryFolder folder_;
};

// The next file that is opened would otherwise become the standard output.
TEST_F(SurroundingsTest, AClosedOutputLeadsNowhere) {
    ChildSettings settings;
    settings.output = ChildStream::closed;
    const std::string file = folder_.path("file");
    EXPECT_EQ(
        run_child({KELVARA_SHELL_DRIVER, "skip-warnings", "hold:" + file, "echo:text"}, settings).exit_code,
        0);
    EXPECT_EQ(content("file"), "!");
}

TEST_F(SurroundingsTest, EveryStreamClosed) {
    EXPECT_EQ(
        shell("exec " + driver + "hold:'" + folder_.path("file") + "' echo:text <&- >&- 2>&-").exit_code, 0);
    EXPECT_EQ(content("file"), "!");
}

TEST_F(SurroundingsTest, AClosedInputIsAtItsEnd) {
    ChildSettings settings;
    settings.input = ChildStream::closed;
    const ChildEnd end = run_child({KELVARA_SHELL_DRIVER, "skip-warnings", "number"}, settings);
    EXPECT_NE(end.output.find("There is no more input: the program ends here."), std::string::npos)
        << end.output;
    EXPECT_EQ(end.exit_code, 1);
}

TEST_F(SurroundingsTest, AComputationSurvivesTheLossOfItsViewer) {
    const auto compute = [&](ChildStream output) {
        ChildSettings settings;
        settings.output = output;
        return run_child(
                   {KELVARA_PROGRAM, "skip-warnings", "custom", "pi", "-dec:1000", "-o", folder_.path()},
                   settings)
            .exit_code;
    };
    EXPECT_EQ(compute(ChildStream::broken_pipe), 0);
    const std::size_t expected = files();
    EXPECT_GT(expected, 0u);
    EXPECT_EQ(compute(ChildStream::closed), 0);
    EXPECT_GE(files(), expected);
}

TEST_F(SurroundingsTest, AFullPipeWaitsForItsReader) {
    // More than a pipe holds.
    const std::string text(40'000, 'x');
    const ChildEnd end =
        shell(driver + "echo:" + text + " echo:" + text + " echo:" + text + " echo:last | (sleep 0.3; cat)");
    EXPECT_NE(end.output.find("\n" + text + "\n" + text + "\n" + text + "\nlast\n"), std::string::npos)
        << end.output.size();
}

TEST_F(SurroundingsTest, AFileThatReachedItsAllowedSizeEndsNothing) {
    const ChildEnd end =
        shell("ulimit -f 0; exec " + driver + "hold:'" + folder_.path("file") + "' echo:survived");
    EXPECT_NE(end.output.find("\nsurvived\n"), std::string::npos) << end.output;
    EXPECT_EQ(end.exit_code, 0);
    EXPECT_EQ(content("file"), "");
}

TEST_F(SurroundingsTest, AHangUpIsWhatTheStarterMadeOfIt) {
    const std::string hang_up = driver + "raise:" + std::to_string(SIGHUP) + " echo:survived";
    EXPECT_EQ(shell("exec " + hang_up).exit_code, -SIGHUP);
    const ChildEnd ignored = shell("trap '' HUP; exec " + hang_up);
    EXPECT_EQ(ignored.exit_code, 0);
    EXPECT_NE(ignored.output.find("\nsurvived\n"), std::string::npos);
}

TEST_F(SurroundingsTest, AFolderThatIsGone) {
    const ChildEnd end = shell("mkdir '" + folder_.path("gone") + "' && cd '" + folder_.path("gone") +
                               "' && rmdir '" + folder_.path("gone") + "' && exec " + driver + "state");
    EXPECT_EQ(end.exit_code, 0);
    EXPECT_NE(end.output.find("\nintegrity: Intact\n"), std::string::npos) << end.output;
}

TEST_F(SurroundingsTest, ATerminalWithoutAName) {
    kelvara_test::PseudoTerminal terminal(
        {"/usr/bin/env", "-u", "TERM", KELVARA_SHELL_DRIVER, "skip-warnings", "echo:text"});
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_NE(terminal.output().find("text\r\n"), std::string::npos);
}

TEST_F(SurroundingsTest, WithoutProcThereIsNoPath) {
    if (kelvara_test::sanitized) GTEST_SKIP() << "a sanitizer needs /proc itself";
    const ChildEnd end = shell("unshare --mount sh -c 'mount -t tmpfs none /proc && exec \"$0\" state' '" +
                               std::string(KELVARA_SHELL_DRIVER) + "'");
    if (end.output.find("unshare:") != std::string::npos || end.output.find("mount:") != std::string::npos)
        GTEST_SKIP() << "this user may not take /proc away";
    EXPECT_EQ(end.output, "\nFailed to retrieve path.\n");
    EXPECT_EQ(end.exit_code, 1);
}

}  // namespace
}  // namespace kelvara
