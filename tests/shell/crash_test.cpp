// What a crash looks like, in real processes and with dumps that fail.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>

#include "platform/build_identity.h"
#include "platform/os/process.h"
#include "shell/crash_fixture.h"
#include "shell/crash_handler.h"
#include "support/console.h"

namespace kelvara {
namespace {

using kelvara_test::ChildEnd;
using kelvara_test::ChildStream;
using kelvara_test::printed_by;

const std::string report =
    "\n\nOops... Kelvara has crashed.\n"
    "Creating mini-dump file...  Done!\n"
    "\n"
    "The program will now exit.\n"
    "\n";

class CrashTest : public kelvara_test::CrashFixture {
  protected:
    // Reports once, leaves one dump and does not end normally.
    void expect_report(const std::string& action) const {
        const ChildEnd end = crash(action);
        EXPECT_TRUE(end.output.ends_with(report)) << action << end.output;
        EXPECT_EQ(end.output.find("Oops"), end.output.rfind("Oops")) << action << end.output;
        EXPECT_NE(end.exit_code, 0) << action;
        EXPECT_NE(end.exit_code, 1) << action;
        EXPECT_EQ(dump_files().size(), 1u) << action;
    }
};

TEST_F(CrashTest, AWriteToABadAddress) {
    expect_report("fault:write");
}
TEST_F(CrashTest, AReadOfAddressZero) {
    expect_report("fault:read");
}
TEST_F(CrashTest, ACallOfAddressZero) {
    expect_report("fault:call");
}
TEST_F(CrashTest, ADivisionByZero) {
    expect_report("fault:divide");
}
TEST_F(CrashTest, AnIllegalInstruction) {
    expect_report("fault:instruction");
}
TEST_F(CrashTest, AStackThatRunsOut) {
    expect_report("fault:overflow");
}
TEST_F(CrashTest, AnAbort) {
    expect_report("fault:abort");
}
TEST_F(CrashTest, AnExceptionThatNobodyCatches) {
    expect_report("thread-fault:exception");
}
TEST_F(CrashTest, AFaultOnAThread) {
    expect_report("thread-fault:read");
}
TEST_F(CrashTest, AFaultOnAWorker) {
    expect_report("worker-fault:divide");
}
TEST_F(CrashTest, TwoFaultsAtOnceMakeOneReport) {
    expect_report("twin-faults:write");
}

TEST_F(CrashTest, AnAssertionFailureSpeaksFirst) {
    const ChildEnd end = crash("fault:assertion");
    EXPECT_TRUE(
        end.output.ends_with("\n\nFATAL ERROR: Assertion Failure\n\n"
                             "a < b in commit_fault()\n\na is 5\n\n\n"
                             "If this error shows up consistantly with the current options,\n"
                             "please report it as a bug.\n\n"
                             "If this error comes and goes with the current options,\n"
                             "please check your hardware for reliability issues.\n"
                             "Are you overclocking?\n\n"
                             "Terminating Program...\n" +
                             report))
        << end.output;
    // The same end as that of any read of address 0.
    EXPECT_EQ(end.exit_code, crash("fault:read").exit_code);
}

TEST_F(CrashTest, TheDumpHasItsNameAndNamesTheProgram) {
    crash("fault:read");
    ASSERT_EQ(dump_files().size(), 1u);
    std::string name = dump_files().front().filename().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
    EXPECT_EQ(name, "Kelvara-00000000-000000.dmp");
    const std::string content = dump();
    EXPECT_NE(content.find("Program: Kelvara " + program_version() + "\nDigest: "), std::string::npos);
    EXPECT_NE(content.find("\nIntegrity: Intact\n"), std::string::npos);
}

TEST_F(CrashTest, OutputThatIsClosedOrWhoseReaderHasGoneDelaysNothing) {
    const std::int64_t expected = crash("fault:write").exit_code;
    for (const ChildStream stream : {ChildStream::closed, ChildStream::broken_pipe}) {
        for (const auto& file : dump_files()) std::filesystem::remove(file);
        kelvara_test::ChildSettings settings;
        settings.output = stream;
        EXPECT_EQ(crash("fault:write", settings).exit_code, expected);
        EXPECT_NE(dump().find("Program: Kelvara"), std::string::npos);
    }
}

TEST_F(CrashTest, ADumpThatCannotBeCreated) {
    // Folders have the names that a dump has within the next seconds.
    const std::time_t now = std::time(nullptr);
    for (int second = 0; second < 30; ++second) {
        const std::time_t moment = now + second;
        char name[64];
        std::strftime(name, sizeof name, "Kelvara-%Y%m%d-%H%M%S.dmp", std::localtime(&moment));
        std::filesystem::create_directory(folder_.native(name));
    }
    const ChildEnd end = crash("fault:read");
    const std::size_t message = end.output.find("Creating mini-dump file...  \nUnable to create dump file: ");
    ASSERT_NE(message, std::string::npos) << end.output;
    // The system's text is the end of it.
    EXPECT_EQ(std::count(end.output.begin() + static_cast<std::ptrdiff_t>(message), end.output.end(), '\n'),
              2)
        << end.output;
}

std::string given_path, given_description;
std::uint32_t given_error = 0;

qmp::os::DumpOutcome refuse_to_create(const char*, std::string_view, const qmp::os::CrashContext*) {
    return {qmp::os::DumpResult::cannot_create, given_error};
}
qmp::os::DumpOutcome refuse_to_write(const char*, std::string_view, const qmp::os::CrashContext*) {
    return {qmp::os::DumpResult::cannot_write, given_error};
}
qmp::os::DumpOutcome accept(const char* path, std::string_view description, const qmp::os::CrashContext*) {
    given_path = path;
    given_description = description;
    return {};
}

const std::string beginning =
    "\n\nOops... Kelvara has crashed.\n"
    "Creating mini-dump file...  ";

TEST(CrashReport, SaysThatTheDumpFileCannotBeCreated) {
    given_error = 5;
    EXPECT_EQ(printed_by([] { report_crash(nullptr, refuse_to_create); }),
              beginning + "\nUnable to create dump file: " + qmp::os::system_error_text(5) + "\n");
}

TEST(CrashReport, SaysThatTheDumpCannotBeWritten) {
    given_error = 28;
    EXPECT_EQ(printed_by([] { report_crash(nullptr, refuse_to_write); }),
              beginning + "\nUnable to create minidump: " + qmp::os::system_error_text(28) + "\n\n");
}

TEST(CrashReport, SaysThatTheDumpIsDone) {
    EXPECT_EQ(printed_by([] { report_crash(nullptr, accept); }),
              beginning + "Done!\n\nThe program will now exit.\n\n");
    EXPECT_TRUE(given_path.starts_with("Kelvara-20")) << given_path;
    EXPECT_TRUE(given_path.ends_with(".dmp")) << given_path;
}

TEST(CrashReport, DescribesTheProgram) {
    describe_program();
    printed_by([] { report_crash(nullptr, accept); });
    EXPECT_EQ(given_description, "Program: Kelvara " + program_version() + "\n");
    describe_program("0123", "Modified");
    printed_by([] { report_crash(nullptr, accept); });
    EXPECT_EQ(given_description,
              "Program: Kelvara " + program_version() + "\nDigest: 0123\nIntegrity: Modified\n");
}

TEST(CrashReport, NamesItsDump) {
    qmp::os::LocalTime time;
    time.year = 2031;
    time.month = 2;
    time.day = 3;
    time.hour = 4;
    time.minute = 5;
    time.second = 59;
    char name[dump_name_size];
    make_dump_name(time, name);
    EXPECT_STREQ(name, "Kelvara-20310203-040559.dmp");
}

}  // namespace
}  // namespace kelvara
