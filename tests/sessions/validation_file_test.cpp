#include "sessions/validation_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/local_time.h"
#include "sessions/validation_example.h"
#include "support/console.h"
#include "support/folder.h"
#include "support/working_folder.h"

namespace kelvara {
namespace {

using kelvara_test::example_record;
using kelvara_test::printed_by;
using kelvara_test::TemporaryFolder;
using kelvara_test::test_sealer;
using kelvara_test::WorkingFolder;

constexpr const char* head =
    "\xef\xbb\xbf"
    "Benchmark Validation File - DO NOT MODIFY! If you do it will fail validation.\r\n"
    "\r\n"
    "Validation Version:    1.3\r\n"
    "\r\n"
    "Program:               Kelvara v0.7.3 Build 9474\r\n"
    "Tuning:                11-BD1 ~ Vessa\r\n"
    "\r\n"
    "User:                  Somebody\r\n"
    "\r\n"
    "Operating System:      Linux 6.1\r\n"
    "Processor(s):\r\n"
    "    Name:              A Processor\r\n"
    "\r\n"
    "Constant:              Pi\r\n"
    "Algorithm:             Chudnovsky Formula\r\n"
    "Decimal Digits:        1,234\r\n"
    "Hexadecimal Digits:    1,025\r\n"
    "Computation Mode:      Ram Only\r\n"
    "Threading Mode:        Push Pool  ->  2 / ?\r\n"
    "Working Memory:        1,048,576 (1.00 MiB)\r\n"
    "Total Memory:          1,572,864 (1.50 MiB)\r\n";

constexpr const char* rest =
    "Start Date:            Thu Nov 12 21:11:02 2026\r\n"
    "End Date:              Thu Nov 12 21:11:04 2026\r\n"
    "Total Computation Time:    1.250 seconds\r\n"
    "Start-to-End Wall Time:    2.062 seconds\r\n"
    "CPU Utilization:             187.65 %  +    3.20 % kernel overhead\r\n"
    "Multi-core Efficiency:        93.83 %  +    1.60 % kernel overhead\r\n"
    "Last Digits:\r\n"
    "1111111111 1111111111 1111111111 1111111111 1111111111 :  1,184\r\n"
    "2222222222 2222222222 2222222222 2222222222 2222222222 :  1,234\r\n"
    "Dec Counts: {100, 101, 102, 103, 104, 105, 106, 107, 108, 109}\r\n"
    "Hex Counts: {200, 201, 202, 203, 204, 205, 206, 207, 208, 209, 210, 211, 212, 213, 214, 215}\r\n"
    "Binary Hash: Floor(bin * 10^dec) mod (2^61 - 1) = 1234567890123456789\r\n"
    "\r\n"
    "Spot Check:                Good through 1,000\r\n"
    "Timer Sanity Check:        Passed\r\n"
    "Frequency Sanity Check:    Disabled in this version of Kelvara\r\n"
    "Reference Clock:           TSC\r\n"
    "Reference Clock 0:         10000000\r\n"
    "Reference Clock 1:         3700000000\r\n"
    "Reference Clock 2:         12345678\r\n"
    "Is Debugger Present:       No\r\n"
    "Is Contiguous:             Yes\r\n"
    "ECC Recovered Errors:      0\r\n"
    "\r\n"
    "Event Log:\r\n"
    "Thu Nov 12 21:11:02 2026\t0.001\tBegin Computation\r\n"
    "Thu Nov 12 21:11:04 2026\t2.000\tEnd Computation\r\n"
    "\r\n"
    "----";

std::string line_of(const std::string& text, const std::string& label) {
    const std::size_t place = text.find("\n" + label);
    if (place == std::string::npos) return "";
    return text.substr(place + 1, text.find('\r', place) - place - 1);
}

TEST(ValidationFile, ContentToTheByte) {
    EXPECT_EQ(validation_content(example_record()), std::string(head) + rest);
}

TEST(ValidationFile, OfSwapModeTellsTheDiskUse) {
    ValidationRecord record = example_record();
    record.disk = DiskUse{1024 * 1024, 2 * 1024 * 1024, 3 * 1024 * 1024, "Swap Configuration: none\r\n"};
    std::string expected = head;
    const std::string mode = "Ram Only";
    expected.replace(expected.find(mode), mode.size(), "Swap Mode");
    EXPECT_EQ(validation_content(record), expected +
                                              "Logical Peak Disk Usage:       1,048,576 (1.00 MiB)\r\n"
                                              "Logical Disk Bytes Read:       2,097,152 (2.00 MiB)\r\n"
                                              "Logical Disk Bytes Written:    3,145,728 (3.00 MiB)\r\n"
                                              "Swap Configuration: none\r\n" +
                                              rest);
}

TEST(ValidationFile, WithoutHexadecimalDigits) {
    ValidationRecord record = example_record();
    record.hexadecimal_digits = 0;
    const std::string content = validation_content(record);
    EXPECT_EQ(line_of(content, "Hexadecimal"), "Hexadecimal Digits:    Disabled");
    EXPECT_EQ(content.find("Hex Counts"), std::string::npos);
    EXPECT_NE(content.find("Dec Counts"), std::string::npos);
}

TEST(ValidationFile, AfterARestart) {
    ValidationRecord record = example_record();
    record.timer_check = TimerVerdict::disabled;
    record.contiguous = false;
    const std::string content = validation_content(record);
    EXPECT_EQ(line_of(content, "Timer Sanity"),
              "Timer Sanity Check:        Disabled due to checkpoint restart");
    EXPECT_EQ(line_of(content, "Is Contiguous"), "Is Contiguous:             No");
}

TEST(ValidationFile, OtherAnswersOfTheChecks) {
    ValidationRecord record = example_record();
    record.utilization = {};
    record.spot_check = {SpotCheckResult::Kind::mismatch, 1000};
    record.timer_check = TimerVerdict::failed;
    record.clocks = {};
    record.debugger_present = true;
    record.recovered_errors = 12345;
    std::string content = validation_content(record);
    EXPECT_EQ(line_of(content, "CPU Util"), "CPU Utilization:           Too Fast to Measure");
    EXPECT_EQ(line_of(content, "Multi-core"), "Multi-core Efficiency:     Too Fast to Measure");
    EXPECT_EQ(line_of(content, "Spot Check"), "Spot Check:                Mismatch at 1,000");
    EXPECT_EQ(line_of(content, "Timer Sanity"), "Timer Sanity Check:        Failed");
    EXPECT_EQ(line_of(content, "Reference Clock:"), "Reference Clock:           ");
    EXPECT_EQ(line_of(content, "Is Debugger"), "Is Debugger Present:       Yes");
    EXPECT_EQ(line_of(content, "ECC"), "ECC Recovered Errors:      12345");
    record.spot_check = SpotCheckResult::Kind::no_file;
    EXPECT_EQ(line_of(validation_content(record), "Spot Check"), "Spot Check:                Not Available");
    record.spot_check = SpotCheckResult::Kind::no_entry;
    EXPECT_EQ(line_of(validation_content(record), "Spot Check"), "Spot Check:                Not Available");
}

TEST(ValidationFile, TrailerToTheByte) {
    EXPECT_EQ(validation_trailer({"00ff", "11ee"}), "\r\n\r\nChecksum0: 00ff\r\nChecksum1: 11ee\r\n");
}

std::string content_of(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(ValidationFile, IsWrittenIntoTheCurrentFolder) {
    const TemporaryFolder folder;
    std::string printed;
    {
        const WorkingFolder work(folder.path());
        printed = printed_by([] { write_validation_file(example_record(), test_sealer()); });
    }
    const std::string label = "Validation File: ";
    ASSERT_TRUE(printed.starts_with(label)) << printed;
    const std::string name = printed.substr(label.size(), printed.size() - label.size() - 1);
    EXPECT_EQ(name.size(), std::string("Pi - 20261112-211102.txt").size());
    EXPECT_TRUE(name.starts_with("Pi - 2")) << name;
    EXPECT_TRUE(name.ends_with(".txt")) << name;
    EXPECT_EQ(content_of(folder.native(name)), kelvara_test::sealed_file(example_record()));
}

TEST(ValidationFile, ThatCannotBeCreatedIsReported) {
    ValidationRecord record = example_record();
    record.name = "no such folder/Pi";
    const std::string printed = printed_by([&] { write_validation_file(record, test_sealer()); });
    EXPECT_NE(printed.find("Unable to write validation file: no such folder/Pi - "), std::string::npos)
        << printed;
    EXPECT_NE(printed.find("Error Code "), std::string::npos) << printed;
    EXPECT_EQ(printed.find("Validation File:"), std::string::npos) << printed;
}

TEST(LocalTime, AsTexts) {
    const qmp::os::LocalTime time{2026, 11, 2, 1, 3, 4, 5, 678};
    EXPECT_EQ(local_time_text(time), "Mon Nov  2 03:04:05 2026");
    EXPECT_EQ(file_name_time(time), "20261102-030405");
}

class UserName : public testing::Test {
  protected:
    UserName() { std::filesystem::create_directory(folder_.native("program")); }

    std::string name() { return validation_user_name(folder_.path("program/")); }
    void write(const std::string& where, const std::string& text) {
        std::ofstream(folder_.native(where), std::ios::binary) << text;
    }

    TemporaryFolder folder_;
};

TEST_F(UserName, WithoutAFile) {
    EXPECT_EQ(name(), "Username.txt not found.");
}

TEST_F(UserName, StandsBehindItsTag) {
    write("Username.txt", "Username: Above\r\n");
    EXPECT_EQ(name(), "Above");
    write("program/Username.txt", "\xef\xbb\xbfWrite your name below.\r\nUsername:  A Name \r\nMore\r\n");
    EXPECT_EQ(name(), "A Name");
    write("program/Username.txt", "Username:");
    EXPECT_EQ(name(), "");
    using namespace std::string_literals;
    write("program/Username.txt", "\xff\xfeU\0s\0e\0r\0n\0a\0m\0e\0:\0\xe9\0"s);
    EXPECT_EQ(name(), "\xc3\xa9");
}

// The blank that is missing before the name is meant.
TEST_F(UserName, WithoutTheTag) {
    write("program/Username.txt", "Somebody\r\n");
    write("Username.txt", "Username: Above\r\n");
    EXPECT_EQ(name(), "Tag not found inUsername.txt");
}

TEST_F(UserName, CannotLookLikeOtherLines) {
    write("program/Username.txt", "Username: A\tB\x1b[0m\nTotal Computation Time:    0.001 seconds\n");
    EXPECT_EQ(name(), "AB[0m");
}

}  // namespace
}  // namespace kelvara
