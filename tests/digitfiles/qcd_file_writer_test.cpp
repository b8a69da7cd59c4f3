#include "digitfiles/qcd_file_writer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "digitfiles/compressed_files.h"
#include "digitfiles/files.h"

namespace qmp {
namespace {

using kelvara_test::compressed_file;
using kelvara_test::expect_file_exception;
using kelvara_test::padded;
using kelvara_test::some_digits;
using kelvara_test::TemporaryFile;
using kelvara_test::values_of;

// Writes the digits in pieces of the given size.
std::uint64_t write_pieces(QCDFileWriter& writer, const std::string& digits, std::uint64_t piece,
                           std::uint64_t buffer_words = 4) {
    const std::string values = values_of(digits);
    std::vector<Word> buffer(buffer_words);
    std::uint64_t taken = 0;
    for (std::uint64_t i = 0; i < values.size() && writer.is_open(); i += piece) {
        const std::uint64_t count = std::min<std::uint64_t>(piece, values.size() - i);
        const std::uint64_t done = writer.write_chars(values.data() + i, count, buffer.data(), buffer_words);
        EXPECT_EQ(done < count || writer.is_full(), !writer.is_open());
        taken += done;
    }
    return taken;
}

TEST(QCDFileWriter, AFullFileHasNoTotal) {
    for (const std::uint32_t radix : {10u, 16u}) {
        for (const std::uint64_t piece : {1, 7, 18, 19, 20, 100, 5000}) {
            const TemporaryFile file("Pi - 3.qcd");
            QCDFileWriter writer(file.path(), "3.", 1000, 3, radix);
            const std::string digits = some_digits(1100, radix);
            EXPECT_EQ(write_pieces(writer, digits, piece), 1000u);
            EXPECT_FALSE(writer.is_open());
            EXPECT_EQ(file.content(), compressed_file({.digits = digits.substr(0, 1000),
                                                       .radix = radix,
                                                       .digits_per_file = "1000",
                                                       .file_number = "3"}));
        }
    }
}

TEST(QCDFileWriter, TheLastFileHasTheTotalOfTheResult) {
    for (const std::uint32_t radix : {10u, 16u}) {
        for (const std::uint64_t count : {0, 1, 15, 16, 18, 19, 20, 999}) {
            const TemporaryFile file("Pi - 2.qcd");
            const std::string digits = some_digits(count, radix);
            {
                QCDFileWriter writer(file.path(), "3.", 1000, 2, radix);
                EXPECT_EQ(write_pieces(writer, digits, 17), count);
                EXPECT_EQ(writer.digits_written(), count);
            }
            EXPECT_EQ(file.content(), compressed_file({.digits = digits,
                                                       .radix = radix,
                                                       .total = padded(2000 + count),
                                                       .digits_per_file = "1000",
                                                       .file_number = "2"}));
        }
    }
}

TEST(QCDFileWriter, AnUnlimitedFile) {
    const TemporaryFile file("E - 0.qcd");
    QCDFileWriter writer(file.path(), "2.", unlimited_digits_per_file, 0, 16);
    EXPECT_EQ(write_pieces(writer, "0123456789abcdef", 16), 16u);
    writer.close();
    const std::string content = file.content();
    EXPECT_EQ(content, compressed_file({.digits = "0123456789abcdef",
                                        .radix = 16,
                                        .first_digits = "2.",
                                        .total = padded(16),
                                        .digits_per_file = "18446744073709551615"}));
    EXPECT_EQ(content.substr(content.size() - 8), "\xef\xcd\xab\x89\x67\x45\x23\x01");
}

TEST(QCDFileWriter, OneAndZerosIsTheLargestPowerOfTen) {
    const TemporaryFile file("x.qcd");
    QCDFileWriter writer(file.path(), "0.", 100, 0, 10);
    write_pieces(writer, "1000000000000000000", 19);
    writer.close();
    const std::string content = file.content();
    EXPECT_EQ(content.substr(content.size() - 8), kelvara_test::little_endian(1000000000000000000u));
}

TEST(QCDFileWriter, WordsAsTheyStand) {
    const TemporaryFile file("x.qcd");
    QCDFileWriter writer(file.path(), "3.", 100, 0, 10);
    const std::vector<Word> words = {1, 2, 3, 4, 5, 6};
    writer.write_words(words.data(), 6);
    expect_file_exception([&] { writer.write_words(words.data(), 1); }, "QCDFileWriter::write_words()",
                          "Attempted to write beyond the range of this file.", file.path());
}

TEST(QCDFileWriter, AClosedFileTakesNoDigits) {
    const TemporaryFile file("x.qcd");
    QCDFileWriter writer(file.path(), "3.", 100, 0, 10);
    writer.close();
    writer.close();
    Word buffer;
    expect_file_exception([&] { writer.write_chars("", 0, &buffer, 1); }, "QCDFileWriter::write_chars()",
                          "This file is already closed.", file.path());
}

TEST(QCDFileWriter, Refusals) {
    const TemporaryFile file("x.qcd");
    const auto create = [&](std::uint64_t digits_per_file, std::uint32_t radix) {
        return
            [&file, digits_per_file, radix] { QCDFileWriter(file.path(), "3.", digits_per_file, 0, radix); };
    };
    const char* function = "QCDFileWriter::QCDFileWriter()";
    expect_file_exception(create(1000000, 8), function, "Unsupported Radix", file.path());
    expect_file_exception(create(99, 10), function, "Invalid Digits per File", file.path());
    expect_file_exception([&] { QCDFileWriter(file.missing(), "3.", 100, 0, 10); },
                          "SequentialFile::create()", "Unable to create file.", file.missing());
}

}  // namespace
}  // namespace qmp
