#include "digitfiles/ordalis/view.h"

#include <gtest/gtest.h>

#include <string>

#include "digitfiles/files.h"
#include "digitfiles/text_reader.h"
#include "support/console.h"

namespace Ordalis {
namespace {

using kelvara_test::printed_by;
using kelvara_test::TemporaryFile;

// 1, 2, ..., 9, 0, 1, ...
std::string digits_in_turn(std::uint64_t start, std::uint64_t count) {
    std::string digits;
    for (std::uint64_t i = start; i < start + count; ++i) digits += static_cast<char>('0' + (i + 1) % 10);
    return digits;
}

std::string rows_of(std::uint64_t start, std::uint64_t count) {
    return printed_by([&] { print_digit_rows(digits_in_turn(start, count), start); });
}

TEST(ViewRows, BeginInTheColumnOfTheirFirstDigit) {
    EXPECT_EQ(rows_of(44, 20),
              "           "
              "           "
              "           "
              "           "
              "    567890  :  50\n"
              "1234567890 1234\n");
}

TEST(ViewRows, FullRowsEndWithTheNumberOfTheirLastDigit) {
    const std::string row = "1234567890 1234567890 1234567890 1234567890 1234567890 ";
    EXPECT_EQ(rows_of(0, 50), row + " :  50\n");
    EXPECT_EQ(rows_of(1000000, 100), row + " :  1,000,050\n" + row + " :  1,000,100\n");
}

TEST(ViewRows, AGroupAtTheEndIsFollowedByABlank) {
    EXPECT_EQ(rows_of(0, 10), "1234567890 \n");
    EXPECT_EQ(rows_of(0, 11), "1234567890 1\n");
}

TEST(ViewRows, OneDigit) {
    EXPECT_EQ(rows_of(0, 1), "1\n");
    EXPECT_EQ(rows_of(50, 1), "1\n");
    EXPECT_EQ(rows_of(49, 1), std::string(4 * 11 + 9, ' ') + "0  :  50\n");
}

TEST(ViewRows, ShowNoControlCharacters) {
    EXPECT_EQ(printed_by([] { print_digit_rows("1\x1b[31m\n\x80", 0); }), "1?[31m??\n");
}

TEST(View, ShowsTheDigitsOfAFile) {
    const TemporaryFile file("digits.txt", "3.14159");
    qmp::TextReader reader(file.path(), true);
    EXPECT_EQ(printed_by([&] { view_digits(reader, 0, 5); }), "14159\n");
    EXPECT_EQ(printed_by([&] { view_digits(reader, 2, 2); }), "  15\n");
}

TEST(View, ShowsHexadecimalDigits) {
    const TemporaryFile file("digits.txt", "3.243f6a88");
    qmp::TextReader reader(file.path());
    EXPECT_EQ(printed_by([&] { view_digits(reader, 0, 8); }), "243f6a88\n");
}

TEST(View, ARangeThatIsNotThereIsToldSo) {
    const TemporaryFile file("digits.txt", "3.14");
    qmp::TextReader reader(file.path());
    EXPECT_EQ(printed_by([&] { view_digits(reader, 1, 2); }), "This range of digits is not accessible.\n");
    EXPECT_EQ(printed_by([&] { view_digits(reader, 2, 1); }), "This range of digits is not accessible.\n");
}

// A result whose total becomes known when its last file is opened.
class LearningReader final : public qmp::DigitReader {
  public:
    explicit LearningReader(std::uint64_t digits) : digits_(digits) {}
    const char* get_extension() const override { return "test"; }
    void read(std::uint64_t position, char* output, std::uint64_t count) override {
        ASSERT_LE(position + count, digits_);
        digits_in_turn(position, count).copy(output, count);
    }
    void print_info() const override {}
    std::uint32_t get_radix() const override { return 10; }
    std::uint64_t get_digits() const override { return opened_ ? digits_ : 0; }
    void set_raw(bool) override { empty_buffer(); }
    bool check_range(std::uint64_t, std::uint64_t) override { return opened_ = true; }
    std::string get_first_digits(std::uint64_t) override { return "0."; }

  private:
    std::uint64_t digits_;
    bool opened_ = false;
};

TEST(View, IsCutToATotalThatBecomesKnown) {
    LearningReader reader(12);
    EXPECT_EQ(printed_by([&] { view_digits(reader, 0, 100); }), "1234567890 12\n");
    EXPECT_EQ(printed_by([&] { view_digits(reader, 11, 100); }), "            2\n");
}

TEST(View, NothingIsLeftBehindATotalThatBecomesKnown) {
    LearningReader reader(12);
    EXPECT_EQ(printed_by([&] { view_digits(reader, 12, 1); }), "No digits to view.\n");
}

}  // namespace
}  // namespace Ordalis
