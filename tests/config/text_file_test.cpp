#include "config/text_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "errors/file_exception.h"
#include "platform/os/error_codes.h"
#include "platform/os/file.h"
#include "support/folder.h"

namespace {

using namespace std::string_literals;
using qmp::decode_text;
using qmp::DecodedText;
using qmp::read_text_file;

constexpr const char* little = "UTF-16 (Little Endian)";
constexpr const char* big = "UTF-16 (Big Endian)";
const std::string replacement = "\xef\xbf\xbd";

void expect_text(const std::string& bytes, const std::string& text, const std::string& format) {
    const DecodedText decoded = decode_text(bytes);
    EXPECT_EQ(decoded.text, text);
    EXPECT_EQ(decoded.format, format);
}

TEST(DecodeText, Utf8WithAndWithoutAMark) {
    expect_text("", "", "UTF-8");
    expect_text("a\xcf\x80\r\n", "a\xcf\x80\r\n", "UTF-8");
    expect_text("\xef\xbb\xbf", "", "UTF-8");
    expect_text("\xef\xbb\xbf\xcf\x80", "\xcf\x80", "UTF-8");
    // One mark is taken off, not two.
    expect_text("\xef\xbb\xbf\xef\xbb\xbfx", "\xef\xbb\xbfx", "UTF-8");
    expect_text("a\xef\xbb\xbf", "a\xef\xbb\xbf", "UTF-8");
}

TEST(DecodeText, MalformedUtf8IsKept) {
    expect_text("\xff", "\xff", "UTF-8");
    expect_text("\xfe", "\xfe", "UTF-8");
    expect_text("\xef\xbb", "\xef\xbb", "UTF-8");
    expect_text("\xef\xbb\xbf\xc3(\x80", "\xc3(\x80", "UTF-8");
    expect_text("a\0b"s, "a\0b"s, "UTF-8");
}

TEST(DecodeText, Utf16OfBothOrders) {
    expect_text("\xff\xfe", "", little);
    expect_text("\xfe\xff", "", big);
    expect_text(
        "\xff\xfe"
        "a\0\xc0\x03\xac\x20\x3d\xd8\x00\xde"s,
        "a\xcf\x80\xe2\x82\xac\xf0\x9f\x98\x80", little);
    expect_text("\xfe\xff\0a\x03\xc0\x20\xac\xd8\x3d\xde\x00"s, "a\xcf\x80\xe2\x82\xac\xf0\x9f\x98\x80", big);
    expect_text("\xff\xfe\0\0"s, "\0"s, little);
    // A second mark is a character.
    expect_text("\xff\xfe\xff\xfe", "\xef\xbb\xbf", little);
}

TEST(DecodeText, UnpairedSurrogatesBecomeReplacements) {
    expect_text(
        "\xff\xfe\x3d\xd8"
        "a\0"s,
        replacement + "a", little);
    expect_text(
        "\xff\xfe\x00\xde"
        "a\0"s,
        replacement + "a", little);
    expect_text(
        "\xff\xfe"
        "a\0\x3d\xd8"s,
        "a" + replacement, little);
    expect_text("\xfe\xff\xd8\x3d\xd8\x3d\xde\x00"s, replacement + "\xf0\x9f\x98\x80", big);
    expect_text("\xfe\xff\xde\x00\xd8\x3d"s, replacement + replacement, big);
}

TEST(DecodeText, AHalfUnitAtTheEndBecomesAReplacement) {
    expect_text(
        "\xff\xfe"
        "a",
        replacement, little);
    expect_text(
        "\xff\xfe"
        "a\0b"s,
        "a" + replacement, little);
    expect_text("\xfe\xff\0a\0"s, "a" + replacement, big);
    expect_text("\xff\xfe\x3d\xd8\x00"s, replacement + replacement, little);
}

class TextFiles : public testing::Test {
  protected:
    std::string put(const std::string& content) const {
        std::ofstream(folder_.native("a.txt"), std::ios::binary) << content;
        return folder_.path("a.txt");
    }
    void expect_failure(const std::string& path, std::uint32_t code) const {
        try {
            read_text_file(path);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const qmp::FileIO::FileException& exception) {
            EXPECT_EQ(exception.message(), "Unable to open file.");
            EXPECT_EQ(exception.path(), path);
            EXPECT_EQ(exception.error_code(), code);
        }
    }
    kelvara_test::TemporaryFolder folder_;
};

TEST_F(TextFiles, AreReadWhole) {
    EXPECT_EQ(read_text_file(put("")).text, "");
    EXPECT_EQ(read_text_file(put("\xef\xbb\xbf"
                                 "a\r\nb\n\x1a"
                                 "c\0d"s))
                  .text,
              "a\r\nb\n\x1a"
              "c\0d"s);
    for (const std::size_t size : {65535u, 65536u, 65537u, 200000u}) {
        std::string content;
        while (content.size() < size) content += std::to_string(content.size()) + ' ';
        content.resize(size);
        const DecodedText decoded = read_text_file(put(content));
        EXPECT_TRUE(decoded.text == content) << size;
        EXPECT_EQ(decoded.format, "UTF-8");
    }
    const DecodedText decoded = read_text_file(put("\xfe\xff\0a"s));
    EXPECT_EQ(decoded.text, "a");
    EXPECT_EQ(decoded.format, big);
}

TEST_F(TextFiles, OthersMayReadAtTheSameTime) {
    const std::string path = put("text");
    qmp::os::File other;
    ASSERT_EQ(other.open(path), qmp::os::no_error);
    EXPECT_EQ(read_text_file(path).text, "text");
}

TEST_F(TextFiles, FailWithThePathAndTheCode) {
    expect_failure(folder_.path("none.txt"), qmp::os::file_not_found);
    EXPECT_THROW(read_text_file(folder_.path()), qmp::FileIO::FileException);
    qmp::os::File writer;
    ASSERT_EQ(writer.create(folder_.path("busy.txt")), qmp::os::no_error);
    expect_failure(folder_.path("busy.txt"), qmp::os::sharing_violation);
}

TEST_F(TextFiles, AreNotReadWithoutAnEnd) {
    const std::string path = put("text");
    std::filesystem::resize_file(std::filesystem::path(path), qmp::largest_text_file + 1);
    try {
        read_text_file(path);
        FAIL();
    } catch (const qmp::FileIO::FileException& exception) {
        EXPECT_EQ(exception.message(), "Unable to read file.");
        EXPECT_EQ(exception.error_code(), qmp::os::file_too_large);
    }
}

}  // namespace
