#include "digitfiles/qcd_file_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "digitfiles/compressed_files.h"
#include "digitfiles/files.h"
#include "radix/digit_codecs.h"
#include "support/console.h"

namespace qmp {
namespace {

using kelvara_test::compressed_file;
using kelvara_test::compressed_header;
using kelvara_test::CompressedFile;
using kelvara_test::expect_file_exception;
using kelvara_test::padded;
using kelvara_test::some_digits;
using kelvara_test::TemporaryFile;

constexpr const char* constructor = "QCDFileReader::QCDFileReader()";

std::string read(QCDFileReader& reader, std::uint64_t position, std::uint64_t count,
                 std::uint64_t buffer_words = 4) {
    std::vector<Word> buffer(buffer_words, 0x5555555555555555);
    std::string digits(count + 2, '?');
    reader.read_chars(position, digits.data() + 1, count, buffer.data(), buffer_words,
                      reader.radix() == 10 ? unpack_d19_text : unpack_h16_text);
    EXPECT_EQ(digits.front(), '?');
    EXPECT_EQ(digits.back(), '?');
    return digits.substr(1, count);
}

void expect_refused(const std::string& content, const std::string& message) {
    const TemporaryFile file("x.qcd", content);
    expect_file_exception([&] { QCDFileReader(file.path()); }, constructor, message, file.path());
}

TEST(QCDFileReader, EveryRange) {
    for (const std::uint32_t radix : {10u, 16u}) {
        const std::string digits = some_digits(100, radix);
        const TemporaryFile file(
            "x.qcd", compressed_file(
                         {.digits = digits, .radix = radix, .digits_per_file = "100", .file_number = "7"}));
        QCDFileReader reader(file.path());
        for (std::uint64_t from = 0; from <= 100; ++from) {
            for (std::uint64_t count = 0; count <= 100 - from; ++count) {
                ASSERT_EQ(read(reader, 700 + from, count, 2), digits.substr(from, count)) << from;
            }
        }
    }
}

TEST(QCDFileReader, TheHeaderOfAFullFile) {
    const TemporaryFile file("x.qcd", compressed_header({}));
    const QCDFileReader reader(file.path());
    EXPECT_EQ(reader.version(), "1.1.0");
    EXPECT_EQ(reader.radix(), 10u);
    EXPECT_EQ(reader.first_digits(), "3.");
    EXPECT_EQ(reader.total_digits(), 0u);
    EXPECT_EQ(reader.digits_per_file(), 1000000u);
    EXPECT_EQ(reader.digits_per_word(), 19u);
    EXPECT_EQ(reader.words(), 52632u);
    EXPECT_EQ(reader.start(), 0u);
    EXPECT_EQ(reader.end(), 1000000u);
    EXPECT_EQ(reader.data_offset(), compressed_header({}).size());
}

TEST(QCDFileReader, TheHeaderOfALastFile) {
    const TemporaryFile file("x.qcd", compressed_header({.total = padded(2500000), .file_number = "2"}));
    const QCDFileReader reader(file.path());
    EXPECT_EQ(reader.total_digits(), 2500000u);
    EXPECT_EQ(reader.file_number(), 2u);
    EXPECT_EQ(reader.words(), 26316u);
    EXPECT_EQ(reader.start(), 2000000u);
    EXPECT_EQ(reader.end(), 2500000u);
}

TEST(QCDFileReader, ATotalBelowTheFilesSizeReplacesIt) {
    const TemporaryFile file(
        "x.qcd",
        compressed_header({.radix = 16, .total = padded(33), .digits_per_file = "18446744073709551615"}));
    const QCDFileReader reader(file.path());
    EXPECT_EQ(reader.digits_per_file(), 33u);
    EXPECT_EQ(reader.words(), 3u);
}

TEST(QCDFileReader, BothVersionsAndNoOther) {
    const TemporaryFile file("x.qcd", compressed_file({.digits = some_digits(100, 10), .version = "1.0.0"}));
    QCDFileReader reader(file.path());
    EXPECT_EQ(reader.version(), "1.0.0");
    EXPECT_EQ(read(reader, 20, 50), some_digits(50, 10, 20));
    expect_refused(compressed_header({.version = "1.2.0"}),
                   "This .qcd file is of a later format version.\n"
                   "This version of the Ordalis is unable to view this file.");
    expect_refused(compressed_header({.version = ""}), "No version # found.");
}

// Another order, other line ends, unknown keys.
TEST(QCDFileReader, HeadersOfOtherWriters) {
    const TemporaryFile file("x.qcd",
                             "anything\nBlockID:\t1\nRemark:\tx\ty\nNoTab\n\n\nBlocksize:\t100\r\n"
                             "Base:\t16\r\nFirstDigits:\t\nFileVersion:\t1.0.0\nEndHeader\nrest" +
                                 std::string(1, '\0') + kelvara_test::packed(some_digits(100, 16), 16));
    QCDFileReader reader(file.path());
    EXPECT_EQ(reader.first_digits(), "");
    EXPECT_EQ(reader.file_number(), 1u);
    EXPECT_EQ(read(reader, 100, 100), some_digits(100, 16));
}

TEST(QCDFileReader, BrokenHeaders) {
    const std::string header = compressed_header({});
    expect_refused("", "Invalid File Format");
    expect_refused("#Compressed Digit File", "Invalid File Format");
    for (const std::size_t size : {std::size_t{24}, header.find("Base"), header.size() - 1}) {
        expect_refused(header.substr(0, size), "Error Reading File");
    }
    expect_refused(compressed_header({.digits_per_file = "99"}), "Invalid Digits per File");
    expect_refused(compressed_header({.radix = 8}), "Unsupported Radix");
    expect_refused(compressed_header({.digits_per_file = ""}), "Invalid File Format");
    expect_refused(compressed_header({.digits_per_file = "1e9"}), "Invalid File Format");
    expect_refused(compressed_header({.file_number = "-1"}), "Invalid File Format");
    expect_refused(compressed_header({.total = "99999999999999999999"}), "Invalid File Format");
    std::string without_tab = header;
    without_tab.replace(without_tab.find("BlockID:\t"), 9, "BlockID:");
    expect_refused(without_tab, "Invalid File Format");  // not file 0
}

TEST(QCDFileReader, AHeaderHasAnEnd) {
    const std::string endless(100000, 'x');
    expect_refused(endless, "Invalid File Format");
    expect_refused("#\n" + endless, "Invalid File Format");
    expect_refused("#\nEndHeader\n" + endless + '\0', "Invalid File Format");
    std::string lines = "#\n";
    while (lines.size() < 100000) lines += "Base:\t10\n";
    expect_refused(lines, "Invalid File Format");
}

TEST(QCDFileReader, FilesOutOfRange) {
    expect_refused(compressed_header({.total = padded(2000000), .file_number = "2"}),
                   "This file is out of range.\nStart:        2000000\nEnd:          3000000\n"
                   "Total Digits: 2000000\n");
    expect_refused(compressed_header({.digits_per_file = "18446744073709551615", .file_number = "1"}),
                   "This file is out of range.\nStart:        18446744073709551615\n"
                   "End:          18446744073709551615\nTotal Digits: 0\n");
    expect_refused(compressed_header(
                       {.total = padded(1000), .digits_per_file = "4294967296", .file_number = "4294967296"}),
                   "This file is out of range.\nStart:        4294967296000\nEnd:          4294967297000\n"
                   "Total Digits: 1000\n");
    expect_refused(compressed_header({.digits_per_file = "4294967296", .file_number = "4294967296"}),
                   "This file is out of range.\nStart:        18446744073709551615\n"
                   "End:          18446744073709551615\nTotal Digits: 0\n");
}

TEST(QCDFileReader, DigitsOutsideTheFile) {
    const TemporaryFile file(
        "x.qcd",
        compressed_file({.digits = some_digits(100, 10), .digits_per_file = "100", .file_number = "5"}));
    QCDFileReader reader(file.path());
    const auto text = [](const std::string& requested) {
        return "void QCDFile::read_chars()\nRead out of bounds.\nRequested Range: " + requested +
               "\nAvailable Range: 500 - 600";
    };
    const char* function = "QCDFileReader::read_chars()";
    expect_file_exception([&] { read(reader, 499, 2); }, function, text("499 - 501"), file.path());
    expect_file_exception([&] { read(reader, 599, 2); }, function, text("599 - 601"), file.path());
    expect_file_exception([&] { read(reader, 601, 0); }, function, text("601 - 601"), file.path());
    EXPECT_EQ(read(reader, 599, 1), some_digits(1, 10, 99));
    EXPECT_EQ(read(reader, 600, 0), "");
}

TEST(QCDFileReader, WordsOutsideTheFile) {
    const TemporaryFile file("x.qcd",
                             compressed_file({.digits = some_digits(100, 10), .digits_per_file = "100"}));
    QCDFileReader reader(file.path());
    Word words[6];
    reader.read_words(5, words, 1);
    EXPECT_EQ(kelvara_test::little_endian(words[0]), kelvara_test::packed(some_digits(5, 10, 95), 10));
    const std::string screen = kelvara_test::printed_by([&] {
        expect_file_exception([&] { reader.read_words(4, words, 3); }, "QCDFileReader::read_words()",
                              "QCDFile::read_words(ufL_t pos, u64_t* T, upL_t L)\nRead out of bounds.\n"
                              "Requested Range: 4 - 7\nAvailable Range: 0 - 6",
                              file.path());
    });
    EXPECT_NE(screen.find("Internal Error: Read out of Bounds"), std::string::npos);
}

TEST(QCDFileReader, ATruncatedFile) {
    const std::string content = compressed_file({.digits = some_digits(100, 10), .digits_per_file = "100"});
    const TemporaryFile file("x.qcd", content.substr(0, content.size() - 1));
    QCDFileReader reader(file.path());
    EXPECT_EQ(read(reader, 0, 95), some_digits(95, 10));
    expect_file_exception([&] { read(reader, 0, 96); }, "QCDFileReader::read_words()", "Error Reading File",
                          file.path());
    // A header that promises more than a disk can hold.
    const TemporaryFile lying("x.qcd", compressed_header({.digits_per_file = "18446744073709551615"}));
    QCDFileReader huge(lying.path());
    EXPECT_THROW(read(huge, 0, 1), FileIO::FileException);
    EXPECT_THROW(read(huge, 18446744073709551613u, 1), FileIO::FileException);
}

TEST(QCDFileReader, ADamagedWordIsNotDigits) {
    std::string content = compressed_file({.digits = some_digits(100, 10), .digits_per_file = "100"});
    content.replace(content.size() - 32, 8, kelvara_test::little_endian(10000000000000000000u));
    const TemporaryFile file("x.qcd", content);
    QCDFileReader reader(file.path());
    EXPECT_EQ(read(reader, 0, 38), some_digits(38, 10));
    EXPECT_EQ(read(reader, 57, 43), some_digits(43, 10, 57));
    expect_file_exception([&] { read(reader, 40, 1); }, "QCDFileReader::read_chars()",
                          "Invalid Digits: words 2 - 3", file.path());
    expect_file_exception([&] { read(reader, 0, 100); }, "QCDFileReader::read_chars()",
                          "Invalid Digits: words 0 - 4", file.path());
}

}  // namespace
}  // namespace qmp
