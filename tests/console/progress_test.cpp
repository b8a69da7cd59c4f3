// Steps where output is not a console; their labels are tested on a pseudo-terminal.
#include "console/progress.h"

#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

#include "support/standard_streams.h"

namespace qmp {
namespace {

using kelvara_test::CapturedOutput;

const std::string time_line = "Time:    [0-9]+\\.[0-9]{3} seconds  \\( [0-9]+\\.[0-9]{3} minutes \\)\n";

TEST(ConsoleProgress, LeavesLabelsOutOfALog) {
    CapturedOutput output;
    ConsoleProgress progress;
    progress.begin_step("Summing Series...  ", "Summing Series");
    progress.note("Summing: 4,061 terms", 'G');
    progress.push_label("Series: 1 / 3", 'G');
    progress.push_label(" -> 512", 'Y');
    progress.pop_label();
    progress.pop_label();
    progress.pop_label();
    progress.end_step();
    progress.end_step();
    const std::string text = output.finish();
    EXPECT_TRUE(std::regex_match(text, std::regex("Summing Series\\.\\.\\.  Summing: 4,061 terms\n" + time_line))) << text;
}

TEST(ConsoleProgress, GivesMessagesLinesOfTheirOwn) {
    CapturedOutput output;
    ConsoleProgress progress;
    progress.message("Before any step.", 'R');
    progress.begin_step("Base Converting:", "Base Converting");
    progress.message("Radix Conversion Failed - Reattempting...", 'R');
    progress.message("And again.", 'R');
    progress.end_step();
    const std::string text = output.finish();
    EXPECT_TRUE(std::regex_match(
        text, std::regex("Before any step\\.\nBase Converting:\nRadix Conversion Failed - Reattempting\\.\\.\\.\n"
                         "And again\\.\n" + time_line)))
        << text;
}

TEST(ConsoleProgress, ClosesAStepThatAnExceptionLeft) {
    CapturedOutput output;
    ConsoleProgress progress;
    try {
        progress.begin_step("Division...", "Division");
        const ScopedLabel label(&progress, "Iterating: ", 'G');
        throw std::runtime_error("lost");
    } catch (const std::runtime_error&) {
    }
    progress.begin_step("Division...", "Division");
    progress.end_step();
    const std::string text = output.finish();
    EXPECT_TRUE(std::regex_match(text, std::regex("Division\\.\\.\\.\nDivision\\.\\.\\.\n" + time_line))) << text;
}

TEST(ConsoleProgress, TitlesMayBeginOnANewLine) {
    CapturedOutput output;
    ConsoleProgress progress;
    progress.begin_step("\nSumming Series C...  ", "Summing Series C");
    progress.end_step();
    const std::string text = output.finish();
    EXPECT_TRUE(std::regex_match(text, std::regex("\nSumming Series C\\.\\.\\.  \n" + time_line))) << text;
}

TEST(ScopedLabel, NeedsNoProgress) {
    const ScopedLabel label(nullptr, "nobody sees this", 'G');
}

}  // namespace
}  // namespace qmp
