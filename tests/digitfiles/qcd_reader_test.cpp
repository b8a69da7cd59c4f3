#include "digitfiles/qcd_reader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "digitfiles/compressed_files.h"
#include "digitfiles/files.h"
#include "support/console.h"
#include "support/folder.h"
#include "support/messages.h"

namespace qmp {
namespace {

using kelvara_test::compressed_file;
using kelvara_test::compressed_header;
using kelvara_test::CompressedFile;
using kelvara_test::expect_file_exception;
using kelvara_test::expect_string_exception;
using kelvara_test::padded;
using kelvara_test::some_digits;
using kelvara_test::TemporaryFolder;
using kelvara_test::values_of;

constexpr std::uint64_t file_digits = 100;

// The files of a result of 250 digits, 100 in each.
class QCDReaderTest : public testing::Test {
  protected:
    CompressedFile file(std::uint64_t k) const {
        return {.digits = digits.substr(file_digits * k, file_digits),
                .total = padded(k == 2 ? 250 : 0),
                .digits_per_file = "100",
                .file_number = std::to_string(k)};
    }
    void put(const std::string& name, const std::string& content) const {
        std::ofstream(folder.native(name), std::ios::binary) << content;
    }
    void put_all() const {
        for (std::uint64_t k = 0; k < 3; ++k)
            put("Pi - " + std::to_string(k) + ".qcd", compressed_file(file(k)));
    }
    std::string path(std::uint64_t k) const { return folder.path("Pi - " + std::to_string(k) + ".qcd"); }

    TemporaryFolder folder;
    std::string digits = some_digits(250, 10);
};

std::string read(DigitReader& reader, std::uint64_t position, std::uint64_t count) {
    std::string output(count, '?');
    reader.read(position, output.data(), count);
    return output;
}

TEST_F(QCDReaderTest, EveryRangeFromEveryFile) {
    put_all();
    for (std::uint64_t k = 0; k < 3; ++k) {
        QCDReader reader(path(k));
        for (std::uint64_t from = 0; from <= 250; from += 7) {
            for (std::uint64_t count = 0; count <= 250 - from; count += 11) {
                ASSERT_EQ(read(reader, from, count), digits.substr(from, count));
            }
        }
        EXPECT_EQ(read(reader, 0, 250), digits);
        reader.set_raw(true);
        EXPECT_EQ(read(reader, 0, 250), values_of(digits));
        reader.set_raw(false);
        EXPECT_EQ(read(reader, 249, 1), digits.substr(249));
    }
}

TEST_F(QCDReaderTest, WhatTheHeadersTell) {
    put_all();
    QCDReader reader(path(0));
    EXPECT_STREQ(reader.get_extension(), "qcd");
    EXPECT_EQ(reader.get_radix(), 10u);
    EXPECT_EQ(reader.get_digits(), 0u);
    EXPECT_EQ(reader.number_of_files(), 0u);
    EXPECT_EQ(reader.get_first_digits(0), "3.");
    EXPECT_EQ(reader.common_prefix(), "Pi - ");
    EXPECT_EQ(reader.search_paths(), std::vector<std::string>{folder.path() + "/"});
    EXPECT_EQ(reader.digits_per_file(), 100u);
    reader.set_current_file(2);
    EXPECT_EQ(reader.get_digits(), 250u);
    EXPECT_EQ(reader.number_of_files(), 3u);
}

TEST_F(QCDReaderTest, HexadecimalDigits) {
    const std::string hexadecimal = some_digits(90, 16);
    put("Pi - 0.qcd", compressed_file({.digits = hexadecimal,
                                       .radix = 16,
                                       .total = padded(90),
                                       .digits_per_file = "18446744073709551615"}));
    QCDReader reader(path(0));
    EXPECT_EQ(reader.get_radix(), 16u);
    EXPECT_EQ(read(reader, 0, 90), hexadecimal);
    reader.set_raw(true);
    EXPECT_EQ(read(reader, 3, 80), values_of(hexadecimal.substr(3, 80)));
}

TEST_F(QCDReaderTest, ReadingBeyondTheEnd) {
    put_all();
    const auto expect_out_of_range = [](QCDReader& reader, std::uint64_t position, std::uint64_t count) {
        EXPECT_EQ(kelvara_test::message_of<FileIO::FileException>([&] { read(reader, position, count); }),
                  "Out of range.");
    };
    QCDReader known(path(2));
    expect_out_of_range(known, 250, 1);
    expect_out_of_range(known, 240, 11);
    EXPECT_EQ(read(known, 250, 0), "");
    QCDReader unknown(path(0));
    expect_out_of_range(unknown, 190, 61);
    QCDReader another(path(0));
    expect_out_of_range(another, 260, 1);
    EXPECT_EQ(another.get_digits(), 250u);
}

TEST_F(QCDReaderTest, FullFilesHaveNoTotal) {
    put("Pi - 0.qcd", compressed_file(file(0)));
    put("Pi - 1.qcd", compressed_file(file(1)));
    QCDReader reader(path(0));
    EXPECT_EQ(read(reader, 50, 150), digits.substr(50, 150));
    EXPECT_EQ(reader.get_digits(), 0u);
    expect_file_exception([&] { read(reader, 199, 2); }, "QCDReader::set_current_file()",
                          "Unable to open file #2", path(2));
}

TEST_F(QCDReaderTest, AMissingFileInTheMiddle) {
    put_all();
    std::filesystem::remove(folder.native("Pi - 1.qcd"));
    QCDReader reader(path(0));
    EXPECT_EQ(read(reader, 200, 50), digits.substr(200, 50));
    expect_file_exception([&] { read(reader, 0, 101); }, "QCDReader::set_current_file()",
                          "Unable to open file #1", path(1));
    // The reader goes on with the files that are there.
    EXPECT_EQ(read(reader, 0, 100), digits.substr(0, 100));
    EXPECT_TRUE(reader.check_range(0, 100));
    EXPECT_FALSE(reader.check_range(0, 101));
    EXPECT_FALSE(reader.check_range(99, 210));
    EXPECT_TRUE(reader.check_range(200, 250));
    EXPECT_TRUE(reader.check_range(200, 300));
    EXPECT_FALSE(reader.check_range(200, 301));
}

TEST_F(QCDReaderTest, RangesOfAnUnknownTotal) {
    put("Pi - 0.qcd", compressed_file(file(0)));
    put("Pi - 1.qcd", compressed_file(file(1)));
    QCDReader reader(path(1));
    EXPECT_TRUE(reader.check_range(0, 200));
    EXPECT_FALSE(reader.check_range(0, 201));
    EXPECT_FALSE(reader.check_range(0, 18446744073709551615u));
    put("Pi - 2.qcd", compressed_file(file(2)));
    EXPECT_EQ(reader.get_digits(), 0u);
    EXPECT_TRUE(reader.check_range(0, 300));
    EXPECT_EQ(reader.get_digits(), 250u);
    EXPECT_FALSE(reader.check_range(0, 301));
    expect_string_exception([&] { reader.check_range(5, 5); }, "QCDReader::check_range()",
                            "Invalid Parameters");
}

TEST_F(QCDReaderTest, NumbersWithLeadingZeros) {
    put("Pi - 000.qcd", compressed_file(file(0)));
    put("Pi - 1.qcd", compressed_file(file(1)));
    put("Pi - 02.qcd", compressed_file(file(2)));
    QCDReader reader(folder.path("Pi - 000.qcd"));
    EXPECT_EQ(reader.common_prefix(), "Pi - ");
    EXPECT_EQ(read(reader, 0, 250), digits);
    // No further than the opened name's width.
    std::filesystem::rename(folder.native("Pi - 1.qcd"), folder.native("Pi - 0001.qcd"));
    QCDReader narrow(folder.path("Pi - 000.qcd"));
    EXPECT_THROW(read(narrow, 100, 1), FileIO::FileException);
}

TEST_F(QCDReaderTest, SeveralFolders) {
    std::filesystem::create_directory(folder.native("more"));
    put("Pi - 0.qcd", compressed_file(file(0)));
    put("more/Pi - 1.qcd", compressed_file(file(1)));
    put("more/Pi - 2.qcd", compressed_file(file(2)));
    QCDReader reader(path(0));
    EXPECT_FALSE(reader.check_range(0, 250));
    reader.add_search_path(folder.path("more"));
    EXPECT_EQ(reader.search_paths().back(), folder.path("more/"));
    EXPECT_TRUE(reader.check_range(0, 250));
    EXPECT_EQ(read(reader, 0, 250), digits);
}

TEST_F(QCDReaderTest, FilesOfAnotherResult) {
    put("Pi - 0.qcd", compressed_file(file(0)));
    QCDReader reader(path(0));
    const auto expect_refused = [&](const CompressedFile& other, const std::string& message) {
        put("Pi - 1.qcd", compressed_file(other));
        try {
            read(reader, 100, 1);
            FAIL() << message;
        } catch (const Ordalis::InconsistentMetaData& exception) {
            EXPECT_EQ(exception.function(), "QCDReader::load_new_file");
            EXPECT_EQ(exception.message(), message);
            EXPECT_EQ(exception.path(), path(1));
        }
        EXPECT_EQ(read(reader, 0, 100), digits.substr(0, 100));
    };
    CompressedFile other = file(1);
    other.version = "1.0.0";
    expect_refused(other, "File version does not match.");
    other = file(1);
    other.radix = 16;
    expect_refused(other, "Radix does not match.");
    other = file(1);
    other.digits_per_file = "101";
    expect_refused(other, "Digits per file does not match.");
    other = file(1);
    other.first_digits = "2.";
    expect_refused(other, "First digits do not match.");
    // Its name tells another number than its header.
    expect_refused(file(0), "File number does not match.");
}

TEST_F(QCDReaderTest, TotalsThatDiffer) {
    put_all();
    CompressedFile other = file(1);
    other.total = padded(180);
    put("Pi - 1.qcd", compressed_file(other));
    QCDReader reader(path(2));
    try {
        read(reader, 100, 1);
        FAIL();
    } catch (const Ordalis::InconsistentMetaData& exception) {
        EXPECT_EQ(exception.message(), "Total digit does not match.");
    }
}

// One file may bear any name.
TEST_F(QCDReaderTest, NamesWithoutANumber) {
    CompressedFile only = file(0);
    only.total = padded(100);
    put("digits.qcd", compressed_file(only));
    QCDReader reader(folder.path("digits.qcd"));
    EXPECT_EQ(reader.common_prefix(), "digits");
    EXPECT_EQ(read(reader, 0, 100), digits.substr(0, 100));
    put("pi2026.qcd", compressed_file(only));
    QCDReader numbered(folder.path("pi2026.qcd"));
    EXPECT_EQ(numbered.common_prefix(), "pi");
    EXPECT_EQ(read(numbered, 0, 100), digits.substr(0, 100));
}

TEST_F(QCDReaderTest, NamesThatAreRefused) {
    const char* function = "QCDReader::QCDReader()";
    expect_file_exception([] { QCDReader("qcd"); }, function, "File name is too short.", "qcd");
    expect_file_exception([] { QCDReader("Pi - 0.txt"); }, function, "Invalid Extension", "Pi - 0.txt");
    expect_file_exception([] { QCDReader("Pi - 0.QCD"); }, function, "Invalid Extension", "Pi - 0.QCD");
    expect_file_exception([&] { QCDReader reader(path(0)); }, "SequentialFile::open()",
                          "Unable to open file.", path(0));
}

TEST_F(QCDReaderTest, TheIteratorLoadsAFileAtATime) {
    put_all();
    QCDReader reader(path(0));
    reader.set_pos(40);
    reader.reload();
    EXPECT_EQ(reader.buffer_size() - reader.buffer_offset(), 60u);
    EXPECT_EQ(std::string(reader.buffer() + reader.buffer_offset(), 60), digits.substr(40, 60));
    for (std::uint64_t i = 40; i < 250; ++i) ASSERT_EQ(reader.next(), digits[i]);
    EXPECT_EQ(reader.buffer_offset(), reader.buffer_size());
    expect_file_exception([&] { reader.next(); }, "QCDReader::reload()", "No more digits left: 250", path(2));
    reader.set_pos(250);
    expect_string_exception([&] { reader.set_pos(251); }, "DigitReader::set_pos()", "Out of range.");
    reader.set_pos(5);
    reader.set_raw(true);
    EXPECT_EQ(reader.next(), digits[5] - '0');
}

TEST_F(QCDReaderTest, TheIteratorOfAnUnknownTotal) {
    put("Pi - 0.qcd", compressed_file(file(0)));
    put("Pi - 1.qcd", compressed_file(file(1)));
    QCDReader reader(path(1));
    for (std::uint64_t i = 0; i < 200; ++i) ASSERT_EQ(reader.next(), digits[i]);
    expect_file_exception([&] { reader.next(); }, "QCDReader::set_current_file()", "Unable to open file #2",
                          path(2));
    // A total that shows only when its file is opened.
    put("Pi - 2.qcd", compressed_file(file(2)));
    reader.set_pos(260);
    expect_file_exception([&] { reader.reload(); }, "QCDReader::reload()", "No more digits left: 250",
                          path(2));
}

TEST_F(QCDReaderTest, AFailedLoadLeavesNoDigits) {
    std::string content = compressed_file(file(0));
    put("Pi - 0.qcd", content.substr(0, content.size() - 9));
    QCDReader reader(path(0));
    EXPECT_THROW(reader.next(), FileIO::FileException);
    EXPECT_EQ(reader.buffer_offset(), reader.buffer_size());
    EXPECT_EQ(reader.position(), 0u);
}

TEST_F(QCDReaderTest, Info) {
    put_all();
    QCDReader reader(path(2), false, 8192);
    reader.add_search_path("more");
    EXPECT_EQ(kelvara_test::printed_by([&] { reader.print_info(); }),
              "Name:               Pi - \n"
              "max_id_length:      1\n"
              "Search Paths:\n"
              "    " +
                  folder.path() +
                  "/\n"
                  "    more/\n"
                  "Radix:              10\n"
                  "digits_per_word:    19\n"
                  "first_digits:       3.\n"
                  "total_digits:       250\n"
                  "digits_per_file:    100\n"
                  "blocks_per_file:    6\n"
                  "bin_buffer_L:       1024\n"
                  "buffer_L:           0\n"
                  "Iterator File Offset:   0\n"
                  "Iterator Buffer Offset: 0\n");
}

}  // namespace
}  // namespace qmp
