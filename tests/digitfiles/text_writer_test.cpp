#include "digitfiles/text_writer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "digitfiles/files.h"
#include "support/console.h"

namespace qmp {
namespace {

using kelvara_test::expect_file_exception;
using kelvara_test::TemporaryFile;

void write(DigitWriter& writer, std::string digits) {
    writer.write(digits.data(), digits.size());
}

TEST(TextWriter, WritesFirstDigitsAndBlocks) {
    const TemporaryFile file;
    { TextWriter writer(file.path(), "3.", false, 10); }
    EXPECT_EQ(file.content(), "3.");
    {
        TextWriter writer(file.path(), "3.", false, 10);
        write(writer, "14159");
        write(writer, "");
        write(writer, "26535");
    }
    EXPECT_EQ(file.content(), "3.1415926535");
}

TEST(TextWriter, FirstDigitsEndAtTheirPoint) {
    const TemporaryFile file;
    { TextWriter writer(file.path(), "3.1415.92", false, 10); }
    EXPECT_EQ(file.content(), "3.");
}

TEST(TextWriter, EmptyFirstDigitsWriteNothing) {
    const TemporaryFile file;
    TextWriter writer(file.path(), "", false, 10);
    write(writer, "123");
    expect_file_exception([&] { writer.close(); }, "TextReader::TextReader()", "Unexpected End of File",
                          file.path());
    EXPECT_EQ(file.content(), "123");
}

TEST(TextWriter, FirstDigitsNeedAPoint) {
    const TemporaryFile file;
    expect_file_exception([&] { TextWriter(file.path(), "3", true, 10); }, "TextWriter::TextWriter()",
                          "No decimal place was found.", file.path());
}

TEST(TextWriter, ConvertsInPlace) {
    const TemporaryFile file;
    {
        TextWriter writer(file.path(), "a.", true, 16);
        std::string digits("\x0\x9\xa\xf", 4);
        writer.write(digits.data(), digits.size());
        EXPECT_EQ(digits, "09af");
    }
    EXPECT_EQ(file.content(), "a.09af");
    {
        TextWriter writer(file.path(), "0.", true, 10);
        std::string digits("\x0\x1\x9", 3);
        writer.write(digits.data(), digits.size());
        EXPECT_EQ(digits, "019");
    }
    EXPECT_EQ(file.content(), "0.019");
}

TEST(TextWriter, ConvertsTheRadicesItKnows) {
    const TemporaryFile file;
    expect_file_exception([&] { TextWriter(file.path(), "3.", true, 8); }, "TextWriter::TextWriter()",
                          "Unsupported Radix", file.path());
    {
        TextWriter unconverted(file.path(), "3.", false, 8);
        write(unconverted, "1");
    }
    EXPECT_EQ(file.content(), "3.1");
}

TEST(TextWriter, StagedDigitsGoBeforeForeignBlocks) {
    const TemporaryFile file;
    TextWriter writer(file.path(), "0.", true, 10);
    writer.stage("\1\2", 2);
    writer.stage("\3", 1);
    write(writer, "\4\5");
    writer.stage("\6", 1);
    writer.flush();
    writer.flush();
    writer.stage("\7", 1);
    writer.finish();
    EXPECT_EQ(file.content(), "0.1234567");
}

TEST(TextWriter, ALongStageIsWrittenInParts) {
    const TemporaryFile file;
    TextWriter writer(file.path(), "0.", true, 10);
    const std::uint64_t n = 2 * DigitWriter::staging_capacity + 5;
    std::string digits(n, '\0');
    std::string text(n, '0');
    for (std::uint64_t i = 0; i < n; ++i) {
        digits[i] = static_cast<char>(i * 7 % 10);
        text[i] = static_cast<char>('0' + i * 7 % 10);
    }
    writer.stage(digits.data(), 3);
    writer.stage(digits.data() + 3, n - 3);
    writer.finish();
    EXPECT_EQ(file.content(), "0." + text);
}

TEST(TextWriter, AFinishedFileTakesNoMoreDigits) {
    const TemporaryFile file;
    TextWriter writer(file.path(), "0.", true, 10);
    write(writer, "\1");
    writer.finish();
    writer.finish();
    expect_file_exception([&] { write(writer, "\2"); }, "TextWriter::write()", "Error writing to file.",
                          file.path());
    EXPECT_EQ(writer.close()->get_digits(), 1u);
}

TEST(TextWriter, TheDestructorFlushes) {
    const TemporaryFile file;
    {
        TextWriter writer(file.path(), "0.", true, 10);
        writer.stage("\1\2", 2);
    }
    EXPECT_EQ(file.content(), "0.12");
}

TEST(TextWriter, CloseReturnsAReader) {
    const TemporaryFile file;
    TextWriter writer(file.path(), "3.", true, 10);
    write(writer, std::string("\1\4\1\5", 4));
    writer.stage("\11", 1);
    const auto reader = writer.close();
    EXPECT_STREQ(reader->get_extension(), "txt");
    EXPECT_EQ(reader->get_radix(), 10u);
    EXPECT_EQ(reader->get_digits(), 5u);
    char digits[5];
    reader->read(0, digits, 5);
    EXPECT_EQ(std::string(digits, 5), "14159");
}

// The radix of a file without letters is known all the same.
TEST(TextWriter, CloseKeepsTheRadix) {
    const TemporaryFile file;
    TextWriter writer(file.path(), "3.", true, 16);
    write(writer, std::string("\2\4\3", 3));
    EXPECT_EQ(writer.close()->get_radix(), 16u);
}

TEST(TextWriter, AMissingFolderIsReported) {
    const TemporaryFile file;
    try {
        TextWriter writer(file.missing(), "3.", true, 10);
        FAIL();
    } catch (const FileIO::FileException& exception) {
        EXPECT_EQ(exception.message(), "Unable to create file.");
        EXPECT_EQ(exception.path(), file.missing());
        EXPECT_NE(exception.error_code(), 0u);
    }
}

// A device that is always full, where the system has one.
class FullDisk : public testing::Test {
  protected:
    static constexpr const char* path = "/dev/full";
    void SetUp() override {
        if (!std::filesystem::exists(path)) GTEST_SKIP() << "no device that is always full";
    }
};

template <typename Statement>
void expect_disk_full(Statement statement, const std::string& function) {
    try {
        statement();
        FAIL() << "nothing thrown";
    } catch (const FileIO::FileException& exception) {
        EXPECT_EQ(exception.function(), function);
        EXPECT_EQ(exception.message(), "Error writing to file.");
        EXPECT_EQ(exception.path(), "/dev/full");
        EXPECT_EQ(exception.error_code(), 112u);
    }
}

TEST_F(FullDisk, FirstDigits) {
    expect_disk_full([] { TextWriter(path, "3.", true, 10); }, "TextWriter::TextWriter()");
}

TEST_F(FullDisk, Blocks) {
    TextWriter writer(path, "", true, 10);
    expect_disk_full([&] { write(writer, "\1\2\3"); }, "TextWriter::write()");
}

TEST_F(FullDisk, StagedDigitsWhenTheyAreFlushed) {
    TextWriter writer(path, "", true, 10);
    writer.stage("\1", 1);
    expect_disk_full([&] { writer.finish(); }, "TextWriter::write()");
}

// A destructor has nobody to throw to, but it does not keep silent.
TEST_F(FullDisk, StagedDigitsInTheDestructor) {
    const std::string printed = kelvara_test::printed_by([] {
        TextWriter writer(path, "", true, 10);
        writer.stage("\1", 1);
    });
    EXPECT_NE(printed.find("FileException"), std::string::npos) << printed;
    EXPECT_NE(printed.find("Error writing to file."), std::string::npos);
    EXPECT_NE(printed.find("/dev/full"), std::string::npos);
}

}  // namespace
}  // namespace qmp
