// The program from its entry to its end, where no terminal is needed.
#include "shell/program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "errors/exception.h"
#include "support/child_process.h"
#include "support/console.h"
#include "support/folder.h"

namespace kelvara {
namespace {

using kelvara_test::ChildEnd;
using kelvara_test::printed_by;
using kelvara_test::run_child;

TEST(Program, PausesAtExit) {
    EXPECT_FALSE(pauses_at_exit(-1, true));
    EXPECT_FALSE(pauses_at_exit(-1, false));
    EXPECT_TRUE(pauses_at_exit(0, true));
    EXPECT_FALSE(pauses_at_exit(0, false));
    EXPECT_TRUE(pauses_at_exit(1, true));
    EXPECT_TRUE(pauses_at_exit(1, false));
}

ChildEnd driver(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {KELVARA_SHELL_DRIVER, "skip-warnings"});
    return run_child(arguments);
}

TEST(Program, PrintsItsOwnExceptionsAndEndsNormally) {
    const ChildEnd end = driver({"throw", "echo:not reached"});
    EXPECT_EQ(end.exit_code, 0);
    EXPECT_TRUE(
        end.output.ends_with("\nException Encountered: InvalidParametersException\n\n"
                             "In Function: Driver::throw_own()\n\n"
                             "An exception of the program's own.\n\n\n"))
        << end.output;
}

TEST(Program, PrintsStandardExceptionsAndEndsNormally) {
    const ChildEnd end = driver({"throw-standard", "echo:not reached"});
    EXPECT_EQ(end.exit_code, 0);
    EXPECT_TRUE(end.output.ends_with("Uncaught std exception: An exception of the library.\n\n"))
        << end.output;
}

TEST(Program, AFlagBehindTheActionBelongsToTheAction) {
    const ChildEnd end = run_child({KELVARA_PROGRAM, "custom", "pi", "skip-warnings"});
    EXPECT_NE(end.output.find("\nInvalid Parameter: skip-warnings\n"), std::string::npos) << end.output;
    EXPECT_EQ(end.output.find("Begin Computation"), std::string::npos) << end.output;
}

TEST(Program, TakesArgumentsInEveryScript) {
    const std::string text = "\u03c0 \u20ac \U0001f600";
    const ChildEnd end = driver({"echo:" + text + ":with:colons"});
    EXPECT_NE(end.output.find("\n" + text + ":with:colons\n"), std::string::npos) << end.output;
}

int throw_own() {
    throw qmp::InvalidParametersException("", "An exception of the program's own.");
}

int throw_standard() {
    throw std::runtime_error("An exception of the library.");
}

TEST(Program, PrintsWhatEscapes) {
    int exit_code = -1;
    EXPECT_EQ(printed_by([&] { exit_code = run_guarded(throw_own, false); }), printed_by([] {
                  qmp::InvalidParametersException("", "An exception of the program's own.").print();
              }));
    EXPECT_EQ(exit_code, 0);
    EXPECT_EQ(printed_by([&] { exit_code = run_guarded(throw_standard, false); }),
              "Uncaught std exception: An exception of the library.\n");
    EXPECT_EQ(exit_code, 0);
    EXPECT_EQ(run_guarded([] { return 5; }, false), 5);
}

TEST(Program, LeavesExceptionsToADebugger) {
    EXPECT_EQ(printed_by([] {
                  EXPECT_THROW(run_guarded(throw_own, true), qmp::InvalidParametersException);
                  EXPECT_THROW(run_guarded(throw_standard, true), std::runtime_error);
              }),
              "");
    EXPECT_EQ(run_guarded([] { return 5; }, true), 5);
}

}  // namespace
}  // namespace kelvara
