#include "digitfiles/open_digit_file.h"

#include <gtest/gtest.h>

#include <string>

#include "digitfiles/compressed_files.h"
#include "digitfiles/files.h"

namespace qmp {
namespace {

using kelvara_test::expect_file_exception;
using kelvara_test::TemporaryFile;

TEST(OpenDigitFile, TextFiles) {
    const TemporaryFile file("some.digits.txt", "3.243f6");
    const auto characters = OpenDigitFile(file.path(), false, 0);
    EXPECT_STREQ(characters->get_extension(), "txt");
    EXPECT_EQ(characters->get_radix(), 16u);
    EXPECT_EQ(characters->get_digits(), 5u);
    EXPECT_EQ(characters->next(), '2');
    const auto values = OpenDigitFile(file.path(), true, 0);
    values->set_pos(3);
    EXPECT_EQ(values->next(), 15);
}

TEST(OpenDigitFile, NamesThatAreNotDigitFiles) {
    const auto open = [](const std::string& path) { return [path] { OpenDigitFile(path, false, 0); }; };
    expect_file_exception(open("digits"), "OpenDigitFile()", "No Extension found.", "digits");
    expect_file_exception(open(""), "OpenDigitFile()", "No Extension found.", "");
    expect_file_exception(open("digits.TXT"), "OpenDigitFile()", "Unrecognized Extension: .TXT",
                          "digits.TXT");
    expect_file_exception(open("digits.txt.gz"), "OpenDigitFile()", "Unrecognized Extension: .gz",
                          "digits.txt.gz");
    expect_file_exception(open("digits."), "OpenDigitFile()", "Unrecognized Extension: .", "digits.");
    expect_file_exception(open("a.b/digits"), "OpenDigitFile()", "Unrecognized Extension: .b/digits",
                          "a.b/digits");
}

TEST(OpenDigitFile, CompressedFiles) {
    const TemporaryFile file(
        "Pi - 0.qcd",
        kelvara_test::compressed_file({.digits = "14159265358979323846", .total = kelvara_test::padded(20)}));
    const auto characters = OpenDigitFile(file.path(), false, 0);
    EXPECT_STREQ(characters->get_extension(), "qcd");
    EXPECT_EQ(characters->get_radix(), 10u);
    EXPECT_EQ(characters->next(), '1');
    const auto values = OpenDigitFile(file.path(), true, 67108864);
    values->set_pos(19);
    EXPECT_EQ(values->next(), 6);
}

}  // namespace
}  // namespace qmp
