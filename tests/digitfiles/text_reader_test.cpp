#include "digitfiles/text_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "digitfiles/files.h"
#include "support/console.h"

namespace qmp {
namespace {

using kelvara_test::expect_file_exception;
using kelvara_test::expect_string_exception;
using kelvara_test::TemporaryFile;

std::string read(DigitReader& reader, std::uint64_t position, std::uint64_t count) {
    std::string digits(count, '~');
    reader.read(position, digits.data(), count);
    return digits;
}

TEST(TextReader, KnowsTheFile) {
    const TemporaryFile file("digits.txt", "3.14159");
    TextReader reader(file.path());
    EXPECT_STREQ(reader.get_extension(), "txt");
    EXPECT_EQ(reader.get_radix(), 10u);
    EXPECT_EQ(reader.get_digits(), 5u);
    EXPECT_EQ(reader.data_offset(), 2u);
    EXPECT_EQ(reader.get_first_digits(reader.data_offset()), "3.");
    EXPECT_EQ(reader.get_first_digits(0), "");
    EXPECT_EQ(reader.get_first_digits(4), "3.14");
    EXPECT_EQ(reader.get_first_digits(100), "3.14159");
}

TEST(TextReader, ReadsAnyRange) {
    const TemporaryFile file("digits.txt", "3.14159");
    TextReader reader(file.path());
    EXPECT_EQ(read(reader, 0, 5), "14159");
    EXPECT_EQ(read(reader, 2, 2), "15");
    EXPECT_EQ(read(reader, 4, 1), "9");
    EXPECT_EQ(read(reader, 0, 1), "1");
    EXPECT_EQ(read(reader, 5, 0), "");
    for (const auto& [position, count] : {std::pair<std::uint64_t, std::uint64_t>{5, 1},
                                          {0, 6},
                                          {6, 0},
                                          {~std::uint64_t{0}, 1},
                                          {1, ~std::uint64_t{0}},
                                          {~std::uint64_t{0}, ~std::uint64_t{0}}}) {
        expect_string_exception(
            [&, p = position, c = count] {
                char digit;
                reader.read(p, &digit, c);
            },
            "TextReader::read()", "Out of range.");
    }
}

TEST(TextReader, RawDigits) {
    const TemporaryFile file("digits.txt", "3.1a9f");
    TextReader reader(file.path(), true);
    EXPECT_EQ(reader.get_radix(), 16u);
    EXPECT_EQ(read(reader, 0, 4), std::string("\x1\xa\x9\xf", 4));
    reader.set_raw(false);
    EXPECT_EQ(read(reader, 0, 4), "1a9f");
    reader.set_raw(true);
    EXPECT_EQ(read(reader, 1, 1), "\xa");
}

TEST(TextReader, AGivenRadixIsNotDetected) {
    const TemporaryFile file("digits.txt", "3.1234");
    EXPECT_EQ(TextReader(file.path(), true, 16).get_radix(), 16u);
    expect_string_exception([&] { TextReader(file.path(), true, 12); }, "TextReader::set_raw()",
                            "Unsupported Radix");
    expect_string_exception([&] { TextReader(file.path(), false, 12); }, "TextReader::set_raw()",
                            "Unsupported Radix");
}

TEST(TextReader, InvalidDigitsAreNamedByTheirRange) {
    const TemporaryFile file("digits.txt", "3.12345:789");
    TextReader reader(file.path(), true, 10);
    EXPECT_EQ(read(reader, 0, 5), std::string("\1\2\3\4\5"));
    expect_string_exception([&] { read(reader, 3, 4); }, "TextReader::read()", "Invalid Digit: 3 - 7");
    // Characters are not judged.
    reader.set_raw(false);
    EXPECT_EQ(read(reader, 3, 4), "45:7");
}

TEST(TextReader, LettersInADecimalFileAreInvalidDigits) {
    const TemporaryFile file("digits.txt", "3." + std::string(70, '1') + "a");
    TextReader reader(file.path(), true);
    EXPECT_EQ(reader.get_radix(), 10u);  // the first 64 bytes hold no letter
    expect_string_exception([&] { read(reader, 0, 71); }, "TextReader::read()", "Invalid Digit: 0 - 71");
}

TEST(TextReader, TheRadixIsDetectedFromTheFirst64Bytes) {
    const auto radix = [](const std::string& content) {
        const TemporaryFile file("digits.txt", content);
        return TextReader(file.path()).get_radix();
    };
    EXPECT_EQ(radix("3." + std::string(61, '1') + "a"), 16u);  // the 64th byte
    EXPECT_EQ(radix("3." + std::string(62, '1') + "a"), 10u);
    EXPECT_EQ(radix("f."), 16u);
    EXPECT_EQ(radix("0."), 10u);
    EXPECT_EQ(radix("3.f~"), 16u);  // the scan stops at the first letter
}

TEST(TextReader, OtherBytesEndTheDetection) {
    for (const std::string content : {"3.1g", "3.1A", "3,1", "-3.1", "3.1\n"}) {
        const TemporaryFile file("digits.txt", content);
        expect_string_exception([&] { TextReader(file.path()); }, "TextReader::auto_detect_radix()",
                                "Invalid Digit");
    }
}

TEST(TextReader, ThePointIsAmongTheFirst63Bytes) {
    {
        const TemporaryFile file("digits.txt", std::string(62, '1') + ".5");
        TextReader reader(file.path());
        EXPECT_EQ(reader.data_offset(), 63u);
        EXPECT_EQ(reader.get_digits(), 1u);
        EXPECT_EQ(read(reader, 0, 1), "5");
    }
    const TemporaryFile file("digits.txt", std::string(63, '1') + ".5");
    expect_file_exception([&] { TextReader(file.path()); }, "TextReader::TextReader()",
                          "A decimal place was not found within the first 63 bytes of the file.",
                          file.path());
}

TEST(TextReader, AFileWithoutAPoint) {
    for (const std::string& content : {std::string(), std::string("3"), std::string(62, '1')}) {
        const TemporaryFile file("digits.txt", content);
        expect_file_exception([&] { TextReader(file.path()); }, "TextReader::TextReader()",
                              "Unexpected End of File", file.path());
    }
    const TemporaryFile file("digits.txt", std::string(63, '1'));
    expect_file_exception([&] { TextReader(file.path()); }, "TextReader::TextReader()",
                          "A decimal place was not found within the first 63 bytes of the file.",
                          file.path());
}

TEST(TextReader, NoIntegerPartAndNoDigits) {
    const TemporaryFile file("digits.txt", ".");
    TextReader reader(file.path());
    EXPECT_EQ(reader.data_offset(), 1u);
    EXPECT_EQ(reader.get_digits(), 0u);
}

TEST(TextReader, Ranges) {
    const TemporaryFile file("digits.txt", "3.14159");
    TextReader reader(file.path());
    EXPECT_TRUE(reader.check_range(0, 5));
    EXPECT_TRUE(reader.check_range(4, 5));
    EXPECT_FALSE(reader.check_range(4, 6));
    EXPECT_FALSE(reader.check_range(5, 6));
    expect_string_exception([&] { reader.check_range(3, 3); }, "TextReader::check_range()",
                            "Invalid Parameters");
    expect_string_exception([&] { reader.check_range(4, 3); }, "TextReader::check_range()",
                            "Invalid Parameters");
}

// The size is taken when the file is opened; a file cut afterwards is a short read.
TEST(TextReader, AFileThatShrank) {
    const TemporaryFile file("digits.txt", "3.14159");
    TextReader reader(file.path());
    if (!file.cut(3)) GTEST_SKIP() << "the system keeps open files from being cut";
    expect_string_exception([&] { read(reader, 0, 5); }, "TextReader::read()", "Error Reading from File");
}

TEST(TextReader, AMissingFile) {
    const TemporaryFile file;
    try {
        TextReader reader(file.missing());
        FAIL();
    } catch (const FileIO::FileException& exception) {
        EXPECT_EQ(exception.message(), "Unable to open file.");
        EXPECT_EQ(exception.path(), file.missing());
        EXPECT_NE(exception.error_code(), 0u);
    }
}

TEST(TextReader, Info) {
    const TemporaryFile file("digits.txt", "3.14159");
    TextReader reader(file.path());
    const auto info = [&] { return kelvara_test::printed_by([&] { reader.print_info(); }); };
    EXPECT_EQ(info(), "File: " + file.path() +
                          "\n\n"
                          "Radix:                  10\n"
                          "Decimal Place Offset:   2\n"
                          "Digits in File:         5\n"
                          "Iterator File Offset:   0\n"
                          "Iterator Buffer Offset: 0\n\n");
    reader.set_pos(1);
    reader.next();
    EXPECT_NE(info().find("Iterator File Offset:   2\nIterator Buffer Offset: 67108861\n"),
              std::string::npos);
}

}  // namespace
}  // namespace qmp
