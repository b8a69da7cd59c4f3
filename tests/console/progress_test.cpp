// Steps where output is not a console; their labels are tested on a pseudo-terminal.
#include "console/progress.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/standard_streams.h"

namespace qmp {
namespace {

using kelvara_test::CapturedOutput;

const std::string time_line = "Time:    0.000 seconds  ( 0.000 minutes )\n";

// The text with every digit of its last line as 0: how long a step took does not matter.
std::string without_times(std::string text) {
    for (std::size_t i = text.find("Time:"); i < text.size(); ++i) {
        if (text[i] >= '0' && text[i] <= '9') text[i] = '0';
    }
    return text;
}

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
    EXPECT_EQ(without_times(output.finish()), "Summing Series...  Summing: 4,061 terms\n" + time_line);
}

TEST(ConsoleProgress, GivesMessagesLinesOfTheirOwn) {
    CapturedOutput output;
    ConsoleProgress progress;
    progress.message("Before any step.", 'R');
    progress.begin_step("Base Converting:", "Base Converting");
    progress.message("Radix Conversion Failed - Reattempting...", 'R');
    progress.message("And again.", 'R');
    progress.end_step();
    EXPECT_EQ(without_times(output.finish()),
              "Before any step.\nBase Converting:\nRadix Conversion Failed - Reattempting...\nAnd again.\n" +
                  time_line);
}

TEST(ConsoleProgress, NamesWhatTheNextStepsAreFor) {
    CapturedOutput output;
    ConsoleProgress progress;
    progress.heading("8 * ArcSinlemn( 1 / 2 )");
    progress.begin_step("Division...", "Division");
    progress.end_step();
    EXPECT_EQ(without_times(output.finish()), "8 * ArcSinlemn( 1 / 2 ):\nDivision...\n" + time_line);
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
    EXPECT_EQ(without_times(output.finish()), "Division...\nDivision...\n" + time_line);
}

TEST(ConsoleProgress, TitlesMayBeginOnANewLine) {
    CapturedOutput output;
    ConsoleProgress progress;
    progress.begin_step("\nSumming Series C...  ", "Summing Series C");
    progress.end_step();
    EXPECT_EQ(without_times(output.finish()), "\nSumming Series C...  \n" + time_line);
}

TEST(ScopedLabel, NeedsNoProgress) {
    const ScopedLabel label(nullptr, "nobody sees this", 'G');
}

}  // namespace
}  // namespace qmp
