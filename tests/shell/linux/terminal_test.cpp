// Real processes on a pseudo-terminal: colours, prompts, pauses, labels, the end of input, crashes.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string>

#include "support/folder.h"
#include "support/pseudo_terminal.h"
#include "support/sanitized.h"

namespace kelvara {
namespace {

using kelvara_test::PseudoTerminal;
using kelvara_test::shown_lines;

// The driver with these arguments. Warnings are skipped: which ones there are depends on the machine.
std::vector<std::string> driver(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {KELVARA_SHELL_DRIVER, "skip-warnings"});
    return arguments;
}

// Answers the question for the cursor that a program asks whose terminal was opened for it.
void report_cursor(PseudoTerminal& terminal, int row, int column) {
    ASSERT_TRUE(terminal.wait_for("\x1b[6n"));
    terminal.type("\x1b[" + std::to_string(row) + ";" + std::to_string(column) + "R");
}

std::uint64_t times(const std::string& text, const std::string& part) {
    std::uint64_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

bool shows(const std::string& output, const std::string& line) {
    const std::vector<std::string> lines = shown_lines(output);
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

TEST(Terminal, ShowsColours) {
    PseudoTerminal terminal(driver({"echo:in green"}));
    report_cursor(terminal, 5, 1);
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_NE(terminal.output().find("\x1b[0;96m    x64, SSE,"), std::string::npos) << terminal.output();
    EXPECT_NE(terminal.output().find("\x1b[0;92min green\r\n\x1b[0m\r\n"), std::string::npos)
        << terminal.output();
    EXPECT_TRUE(terminal.output().ends_with("\x1b[0m\r\n"));
}

TEST(Terminal, EveryColourLetter) {
    PseudoTerminal terminal(driver({"colours"}));
    report_cursor(terminal, 5, 1);
    EXPECT_EQ(terminal.wait_for_end(), 0);
    const std::string bright = "\x1b[0;94mB\x1b[0;92mG\x1b[0;96mT\x1b[0;91mR\x1b[0;95mP\x1b[0;93mY";
    const std::string dark = "\x1b[0;34mb\x1b[0;32mg\x1b[0;36mt\x1b[0;31mr\x1b[0;35mp\x1b[0;33my";
    EXPECT_NE(terminal.output().find(bright + dark + " \x1b[0mw\x1b[0;31mr\x1b[0m-\r\n"), std::string::npos)
        << terminal.output();
}

TEST(Terminal, Colors0ChangesNoColour) {
    PseudoTerminal terminal(driver({"colors:0", "echo:plain", "steps", "throw"}));
    report_cursor(terminal, 5, 1);
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_TRUE(shows(terminal.output(), "plain"));
    EXPECT_EQ(times(terminal.output(), "\x1b["), 1u) << terminal.output();  // the question for the cursor
}

TEST(Terminal, PausesInAFreshConsoleOnly) {
    {
        PseudoTerminal fresh(driver({"state"}));
        report_cursor(fresh, 1, 1);
        EXPECT_TRUE(fresh.wait_for("\x1b[8;25;80t"));
        EXPECT_TRUE(fresh.wait_for("Press any key to continue . . . "));
        fresh.type("x");
        EXPECT_EQ(fresh.wait_for_end(), 0);
        EXPECT_TRUE(shows(fresh.output(), "fresh: 1"));
    }
    {
        PseudoTerminal used(driver({"state"}));
        report_cursor(used, 1, 2);
        EXPECT_EQ(used.wait_for_end(), 0);
        EXPECT_TRUE(shows(used.output(), "fresh: 0"));
        EXPECT_EQ(used.output().find("Press any key"), std::string::npos);
        EXPECT_EQ(used.output().find("\x1b[8;"), std::string::npos);
    }
}

TEST(Terminal, DoesNotWaitForASilentTerminal) {
    PseudoTerminal terminal(driver({"state"}));
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_TRUE(shows(terminal.output(), "fresh: 0"));
}

TEST(Terminal, PauseFlags) {
    {
        PseudoTerminal never(driver({"pause:-1", "state"}));
        report_cursor(never, 1, 1);
        EXPECT_EQ(never.wait_for_end(), 0);
        EXPECT_TRUE(shows(never.output(), "fresh: 1"));
        EXPECT_EQ(never.output().find("Press any key"), std::string::npos);
    }
    {
        PseudoTerminal always(driver({"pause:1", "state"}));
        report_cursor(always, 9, 9);
        EXPECT_TRUE(always.wait_for("Press any key to continue . . . "));
        always.type("\x1b[A");
        EXPECT_EQ(always.wait_for_end(), 0);
        EXPECT_TRUE(shows(always.output(), "fresh: 0"));
    }
}

TEST(Terminal, HeightAsksForThatManyRows) {
    PseudoTerminal terminal(driver({"height:50", "state"}));
    report_cursor(terminal, 9, 9);
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_NE(terminal.output().find("\x1b[8;50;80t"), std::string::npos);
}

TEST(Terminal, ANonsensicalHeightLeavesTheWindow) {
    for (const char* flag : {"height", "height:0", "height:-1", "height:-99999999999999999999"}) {
        PseudoTerminal terminal(driver({flag, "state"}));
        report_cursor(terminal, 9, 9);
        EXPECT_EQ(terminal.wait_for_end(), 0);
        EXPECT_EQ(terminal.output().find("\x1b[8;"), std::string::npos) << flag;
    }
}

TEST(Terminal, KeepsWhatWasTypedBeforeTheFirstPrompt) {
    PseudoTerminal terminal(driver({"number", "line"}));
    ASSERT_TRUE(terminal.wait_for("\x1b[6n"));
    terminal.type("7\n\x1b[3;1RAda\n");
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_TRUE(terminal.output().find("answer: 7") != std::string::npos) << terminal.output();
    EXPECT_TRUE(terminal.output().find("[Ada]") != std::string::npos) << terminal.output();
}

TEST(Terminal, AsksAgainAfterGarbage) {
    PseudoTerminal terminal(driver({"number"}));
    report_cursor(terminal, 9, 9);
    // The answer is typed in teal. Keys typed before that colour is set would be echoed before it.
    const std::string prompt = "option: \x1b[0;96m";
    for (const std::string answer :
         {"letters", "", "-3", "0", "99999999999999999999999999", "\u20ac", "10"}) {
        ASSERT_TRUE(terminal.wait_for(prompt));
        terminal.type(answer + "\n");
    }
    ASSERT_TRUE(terminal.wait_for(prompt));
    terminal.type("7 of 9\n");
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_TRUE(shows(terminal.output(), "answer: 7"));
    // White returns after it.
    EXPECT_NE(terminal.output().find("7 of 9\r\n\x1b[0m"), std::string::npos);
}

TEST(Terminal, ReadsOneLongLineWhole) {
    PseudoTerminal terminal(driver({"line"}));
    report_cursor(terminal, 9, 9);
    ASSERT_TRUE(terminal.wait_for("name: "));
    std::string name;
    while (name.size() < 2000) name += "\u20ac\U0001f600";
    terminal.type(name + "\n");
    ASSERT_TRUE(terminal.wait_for("\r\n"));
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_NE(terminal.output().find("[" + name + "]"), std::string::npos);
}

TEST(Terminal, TheEndOfInputEndsTheProgram) {
    PseudoTerminal terminal(driver({"pause:1", "number"}));
    report_cursor(terminal, 9, 9);
    ASSERT_TRUE(terminal.wait_for("option: "));
    terminal.type("\x04");
    EXPECT_EQ(terminal.wait_for_end(), 1);
    EXPECT_EQ(times(terminal.output(), "option: "), 1u);
    EXPECT_TRUE(shows(terminal.output(), "There is no more input: the program ends here."));
}

TEST(Terminal, AClosedWindowEndsTheProgram) {
    PseudoTerminal terminal(driver({"number"}));
    report_cursor(terminal, 9, 9);
    ASSERT_TRUE(terminal.wait_for("option: "));
    terminal.hang_up();
    EXPECT_EQ(terminal.wait_for_end(), -SIGHUP);
}

TEST(Terminal, AnInterruptEndsAPause) {
    PseudoTerminal terminal(driver({"pause:1", "state"}));
    report_cursor(terminal, 9, 9);
    ASSERT_TRUE(terminal.wait_for("Press any key to continue . . . "));
    usleep(100'000);
    terminal.type("\x03");
    EXPECT_EQ(terminal.wait_for_end(), -SIGINT);
}

TEST(Terminal, PrintsEscapedExceptionsAndEndsNormally) {
    PseudoTerminal own(driver({"throw", "echo:not reached"}));
    report_cursor(own, 9, 9);
    EXPECT_EQ(own.wait_for_end(), 0);
    EXPECT_NE(own.output().find("An exception of the program's own."), std::string::npos);
    EXPECT_EQ(own.output().find("not reached"), std::string::npos);
    EXPECT_TRUE(own.output().ends_with("\x1b[0m\r\n"));

    PseudoTerminal standard(driver({"throw-standard"}));
    report_cursor(standard, 9, 9);
    EXPECT_EQ(standard.wait_for_end(), 0);
    EXPECT_NE(standard.output().find("Uncaught std exception: \x1b[0;91mAn exception of the library.\x1b[0m"),
              std::string::npos)
        << standard.output();
}

TEST(Terminal, FatalErrorsPauseAndEndWithOne) {
    PseudoTerminal terminal(driver({"unknown:1"}));
    report_cursor(terminal, 9, 9);
    EXPECT_TRUE(terminal.wait_for("\x1b[0;91mInvalid Parameter: unknown\r\n"));
    EXPECT_TRUE(terminal.wait_for("Press any key to continue . . . "));
    terminal.type(" ");
    EXPECT_EQ(terminal.wait_for_end(), 1);
}

TEST(Terminal, ChecksItself) {
    PseudoTerminal terminal(driver({"state"}));
    report_cursor(terminal, 9, 9);
    EXPECT_EQ(terminal.wait_for_end(), 0);
    EXPECT_TRUE(shows(terminal.output(), "integrity: Intact"));
    EXPECT_TRUE(shows(terminal.output(), "skip warnings: 1"));
}

TEST(Terminal, RewritesTheLabelInsideTheWindow) {
    for (const int columns : {40, 80, 300}) {
        PseudoTerminal terminal(driver({"steps"}), columns);
        report_cursor(terminal, 9, 9);
        EXPECT_EQ(terminal.wait_for_end(), 0);
        EXPECT_TRUE(shows(terminal.output(), "Summing Series...  Summing: 4,061 terms"));
        EXPECT_TRUE(shows(terminal.output(), "A part was done again."));
        EXPECT_NE(terminal.output().find("\x1b[0m"
                                         "Time:    \x1b[0;96m"),
                  std::string::npos);

        // Column by column, the cursor never reaches the last one in the lines of the step.
        const std::string& output = terminal.output();
        int column = 0;
        for (std::size_t i = output.find("Summing Series"); i < output.find("Time:"); ++i) {
            if (output[i] == '\x1b') {
                i = output.find('m', i);
            } else if (output[i] == '\r' || output[i] == '\n') {
                column = 0;
            } else {
                column += output[i] == '\b' ? -1 : 1;
            }
            ASSERT_GE(column, 0);
            ASSERT_LT(column, columns) << output.substr(0, i);
        }
        // Behind title and notes there is room in the wider windows only; behind the message in all.
        const std::string label = "\x1b[0;92mSeries: 1 / 3\x1b[0;93m -> 512";
        const std::size_t message = output.find("A part was done again.");
        EXPECT_EQ(output.substr(0, message).find(label) != std::string::npos, columns > 60) << output;
        EXPECT_NE(output.find(label, message), std::string::npos) << output;
    }
}

TEST(Terminal, ACrashPausesInRedAndWhite) {
    if (kelvara_test::sanitized) GTEST_SKIP() << "a sanitizer reports crashes itself";
    const kelvara_test::TemporaryFolder folder;
    PseudoTerminal terminal(
        {"/bin/sh", "-c",
         "cd '" + folder.path() + "' && exec '" + KELVARA_SHELL_DRIVER + "' skip-warnings fault:overflow"});
    report_cursor(terminal, 9, 9);
    EXPECT_TRUE(terminal.wait_for("\x1b[0;91m\r\nOops... Kelvara has crashed.\r\n"));
    EXPECT_TRUE(terminal.wait_for("Creating mini-dump file...  Done!\r\n\r\nThe program will now exit.\r\n"));
    EXPECT_TRUE(terminal.wait_for("\x1b[0m\r\n\x1b[0mPress any key to continue . . . ")) << terminal.output();
    terminal.type("x");
    EXPECT_EQ(terminal.wait_for_end(), -SIGSEGV) << terminal.output();
}

}  // namespace
}  // namespace kelvara
