#include "sessions/spot_check.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>

#include "support/console.h"
#include "support/folder.h"

namespace kelvara {
namespace {

using kelvara_test::printed_by;
using kelvara_test::TemporaryFolder;
using Kind = SpotCheckResult::Kind;

TEST(ReferenceDigits, LinesOfPositionBarAndDigits) {
    const ReferenceDigits entries = parse_reference_digits(
        "Digits of something\n"
        "10 | 1234567890\r\n"
        " \t1,000\t|\t0,000,000,042 and more\n"
        "20|5\n"
        "\n"
        "30 1234567890\n"
        "9 | 123\n"
        "| 77\n"
        "x | 88\n"
        "40 |\n"
        "18,446,744,073,709,551,676 | 60 if it were taken modulo 2^64\n"
        "50 | 99");
    EXPECT_EQ(entries, (ReferenceDigits{{10, 1234567890},
                                        {20, 5},
                                        {40, 0},
                                        {50, 99},
                                        {1000, 42},
                                        {std::numeric_limits<std::uint64_t>::max(), 60}}));
    EXPECT_TRUE(parse_reference_digits("").empty());
}

TEST(ReferenceDigits, OfAPositionThatOccursTwiceTheFirstCounts) {
    ReferenceDigits entries;
    EXPECT_EQ(printed_by([&] { entries = parse_reference_digits("10 | 1\n20 | 2\n10 | 3\n"); }),
              "\nError parsing digit file: Duplicate entries.\n");
    EXPECT_EQ(entries, (ReferenceDigits{{10, 1}, {20, 2}}));
}

// A folder with a program folder in it, a digit file of 40 digits, and reference files where tests want them.
class SpotCheck : public testing::Test {
  protected:
    SpotCheck() {
        std::filesystem::create_directories(folder_.native("a/b/program"));
        write("digits.txt", "3.1415926535897932384626433832795028841971");
    }

    void write(const std::string& where, const std::string& text) {
        std::filesystem::create_directories(folder_.native(where).parent_path());
        std::ofstream(folder_.native(where), std::ios::binary) << text;
    }
    std::string program() const { return folder_.path("a/b/program/"); }
    SpotCheckResult check(const std::string& reference, std::uint64_t digits = 40) {
        write("a/b/program/Digits/Pi.txt", reference);
        return spot_check_file(program(), "Pi", folder_.path("digits.txt"), digits);
    }

    TemporaryFolder folder_;
};

TEST_F(SpotCheck, DigitsThatAgree) {
    EXPECT_EQ(check("40 | 5028841971\n10 | 1415926535").to_text(), "Good through 40");
    // An expected number may leave out zeros at its front.
    write("digits.txt", "0.0000000007");
    EXPECT_EQ(check("10 | 7", 10).to_text(), "Good through 10");
}

TEST_F(SpotCheck, StopsAtTheFirstThatDisagrees) {
    const SpotCheckResult result = check("40 | 5028841971\n20 | 8979323845\n10 | 1415926535");
    EXPECT_EQ(result.kind, Kind::mismatch);
    EXPECT_EQ(result.to_text(), "Mismatch at 20");
    EXPECT_EQ(check("10 | 1415926536").to_text(), "Mismatch at 10");
}

TEST_F(SpotCheck, StopsAtTheLastThatWasComputed) {
    EXPECT_EQ(check("10 | 1415926535\n40 | 1\n", 39).to_text(), "Good through 10");
    EXPECT_EQ(check("10 | 1415926535\n40 | 1\n", 40).to_text(), "Mismatch at 40");
    EXPECT_EQ(check("1,000,000 | 1\n").to_text(), "Unavailable - No suitable spot check entry.");
    EXPECT_EQ(check("nothing at all\n").to_text(), "Unavailable - No suitable spot check entry.");
}

TEST_F(SpotCheck, ACharacterThatIsNoDigitDisagrees) {
    write("digits.txt", "3." + std::string(70, '1') + "1111111x11");
    EXPECT_EQ(check("70 | 1111111111\n80 | 1111111", 80).to_text(), "Mismatch at 80");
}

TEST_F(SpotCheck, WithoutAReferenceFile) {
    const SpotCheckResult result = spot_check_file(program(), "Pi", folder_.path("digits.txt"), 40);
    EXPECT_EQ(result.kind, Kind::no_file);
    EXPECT_EQ(result.to_text(), "Unavailable - Digit file not found.");
}

TEST_F(SpotCheck, WithoutDigitsToReadBack) {
    EXPECT_EQ(check("10 | 1415926535").to_text(), "Good through 10");
    EXPECT_EQ(spot_check_file(program(), "Pi", "", 40).kind, Kind::no_entry);
    // A file that is shorter than it should be: what is wrong is printed.
    write("digits.txt", "3.14");
    SpotCheckResult result;
    const std::string printed = printed_by([&] { result = check("10 | 1415926535"); });
    EXPECT_EQ(result.kind, Kind::no_entry);
    EXPECT_NE(printed.find("Out of range."), std::string::npos) << printed;
    // And one that is gone.
    std::filesystem::remove(folder_.native("digits.txt"));
    EXPECT_NE(printed_by([&] { result = check("10 | 1415926535"); }), "");
    EXPECT_EQ(result.kind, Kind::no_entry);
}

TEST_F(SpotCheck, ReferenceFilesAreLookedForInOrder) {
    const auto found = [&] { return find_reference_file(program(), "Pi"); };
    EXPECT_EQ(found(), "");
    write("Digits/Pi.txt", "");
    EXPECT_EQ(found(), program() + "../../../Digits/Pi.txt");
    write("a/Digits/Pi.txt", "");
    EXPECT_EQ(found(), program() + "../../Digits/Pi.txt");
    write("a/b/program/Digits/Pi.txt", "");
    EXPECT_EQ(found(), program() + "Digits/Pi.txt");
    write("a/b/program/Binaries/Digits/Pi.txt", "");
    EXPECT_EQ(found(), program() + "Binaries/Digits/Pi.txt");
    EXPECT_EQ(find_reference_file(program(), "e"), "");
}

TEST(SpotCheckLine, IsLabelled) {
    EXPECT_EQ(printed_by([] {
                  print_spot_check({Kind::passed, 1'234'567});
              }),
              "Spot Check: Good through 1,234,567\n");
    EXPECT_EQ(printed_by([] { print_spot_check({Kind::mismatch, 20}); }), "Spot Check: Mismatch at 20\n");
    EXPECT_EQ(printed_by([] { print_spot_check(Kind::no_file); }),
              "Spot Check: Unavailable - Digit file not found.\n");
}

}  // namespace
}  // namespace kelvara
