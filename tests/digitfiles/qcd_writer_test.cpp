#include "digitfiles/qcd_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "digitfiles/compressed_files.h"
#include "digitfiles/files.h"
#include "support/folder.h"

namespace qmp {
namespace {

using kelvara_test::compressed_file;
using kelvara_test::expect_file_exception;
using kelvara_test::padded;
using kelvara_test::some_digits;
using kelvara_test::TemporaryFolder;
using kelvara_test::values_of;

std::string content(const TemporaryFolder& folder, const std::string& name) {
    std::ifstream file(folder.native(name), std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> names_in(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

void write_pieces(QCDWriter& writer, const std::string& digits, std::uint64_t piece) {
    std::string values = values_of(digits);
    for (std::uint64_t i = 0; i < values.size(); i += piece) {
        writer.write(values.data() + i, std::min<std::uint64_t>(piece, values.size() - i));
    }
}

TEST(QCDWriter, AFolderOfFiles) {
    for (const std::uint32_t radix : {10u, 16u}) {
        for (const std::uint64_t piece : {13, 1000, 1999, 10000}) {
            const TemporaryFolder folder;
            const std::string digits = some_digits(2500, radix);
            QCDWriter writer(folder.path(), "Pi", "3.", 1000, 0, radix, 4096);
            write_pieces(writer, digits, piece);
            const auto reader = writer.close();
            EXPECT_EQ(names_in(folder.native("Pi")),
                      (std::vector<std::string>{"Pi - 0.qcd", "Pi - 1.qcd", "Pi - 2.qcd"}));
            for (std::uint64_t k = 0; k < 3; ++k) {
                EXPECT_EQ(content(folder, "Pi/Pi - " + std::to_string(k) + ".qcd"),
                          compressed_file({.digits = digits.substr(1000 * k, 1000),
                                           .radix = radix,
                                           .total = padded(k == 2 ? 2500 : 0),
                                           .digits_per_file = "1000",
                                           .file_number = std::to_string(k)}));
            }
            std::string read(2500, '?');
            reader->read(0, read.data(), read.size());
            EXPECT_EQ(read, digits);
            EXPECT_EQ(reader->get_digits(), 2500u);
        }
    }
}

TEST(QCDWriter, OneFileInTheDirectoryItself) {
    const TemporaryFolder folder;
    const std::string digits = some_digits(123456, 10);
    QCDWriter writer(folder.path() + "/", "Pi", "3.", unlimited_digits_per_file, 0, 10);
    write_pieces(writer, digits, 50000);
    writer.finish();
    EXPECT_EQ(names_in(folder.native("")), std::vector<std::string>{"Pi - 0.qcd"});
    EXPECT_EQ(content(folder, "Pi - 0.qcd"),
              compressed_file(
                  {.digits = digits, .total = padded(123456), .digits_per_file = "18446744073709551615"}));
}

TEST(QCDWriter, FullFilesAreFollowedByNoEmptyOne) {
    const TemporaryFolder folder;
    QCDWriter writer(folder.path(), "Pi", "3.", 1000, 0, 10);
    write_pieces(writer, some_digits(2000, 10), 2000);
    EXPECT_EQ(writer.next_file_number(), 2u);
    const auto reader = writer.close();
    EXPECT_EQ(names_in(folder.native("Pi")).size(), 2u);
    EXPECT_EQ(reader->get_digits(), 0u);
}

TEST(QCDWriter, FilesOfAPartOfAResult) {
    const TemporaryFolder folder;
    const std::string digits = some_digits(2000, 10);
    QCDWriter writer(folder.path(), "Pi", "3.", 1000, 5, 10);
    write_pieces(writer, digits, 700);
    const auto reader = writer.close();
    EXPECT_EQ(names_in(folder.native("Pi")), (std::vector<std::string>{"Pi - 5.qcd", "Pi - 6.qcd"}));
    std::string read(1000, '?');
    reader->read(5500, read.data(), 1000);
    EXPECT_EQ(read, digits.substr(500, 1000));
}

TEST(QCDWriter, NoDigitsNoFile) {
    const TemporaryFolder folder;
    QCDWriter writer(folder.path(), "Pi", "3.", unlimited_digits_per_file, 0, 10);
    EXPECT_EQ(writer.close(), nullptr);
    EXPECT_TRUE(names_in(folder.native("")).empty());
}

TEST(QCDWriter, StagedDigitsComeFirst) {
    const TemporaryFolder folder;
    QCDWriter writer(folder.path(), "Pi", "3.", 1000, 0, 10);
    const std::string digits = some_digits(300, 10);
    std::string values = values_of(digits);
    writer.stage(values.data(), 100);
    writer.write(values.data() + 100, 200);
    EXPECT_EQ(values, values_of(digits));
    const auto reader = writer.close();
    std::string read(300, '?');
    reader->read(0, read.data(), 300);
    EXPECT_EQ(read, digits);
}

TEST(QCDWriter, TellsItsProgressAndUsesTheCallersBuffer) {
    const TemporaryFolder folder;
    std::vector<std::uint64_t> told;
    std::vector<Word> buffer(512, 0x5555555555555555);
    QCDWriter writer(folder.path(), "Pi", "3.", 1000, 0, 10, 4096, buffer.data(),
                     [&told](std::uint64_t digits) { told.push_back(digits); });
    write_pieces(writer, some_digits(1500, 10), 1200);
    writer.finish();
    EXPECT_EQ(told, (std::vector<std::uint64_t>{1000, 1200, 1500}));
    EXPECT_NE(buffer[0], 0x5555555555555555u);
}

TEST(QCDWriter, AFolderThatExistsIsUsed) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.native("Pi"));
    for (const std::uint64_t count : {1500, 1200}) {
        QCDWriter writer(folder.path(), "Pi", "3.", 1000, 0, 10);
        write_pieces(writer, some_digits(count, 10), 500);
        EXPECT_EQ(writer.folder(), folder.path("Pi/"));
        writer.finish();
        EXPECT_EQ(content(folder, "Pi/Pi - 1.qcd").find(padded(count)) != std::string::npos, true);
    }
}

TEST(QCDWriter, Refusals) {
    const TemporaryFolder folder;
    const char* function = "QCDWriter::QCDWriter()";
    expect_file_exception([&] { QCDWriter(folder.path(), "Pi", "3.", 1000, 0, 2); }, function,
                          "Unsupported Radix", folder.path("Pi"));
    expect_file_exception([&] { QCDWriter(folder.path(), "Pi", "3.", 1000, 0, 10, 4095); }, function,
                          "Requested buffer size is too small.", folder.path("Pi"));
    expect_file_exception([&] { QCDWriter(folder.path(), "Pi", "3.", 0, 0, 10); }, function,
                          "Invalid Digits per File", folder.path("Pi"));
    EXPECT_TRUE(names_in(folder.native("")).empty());
}

TEST(QCDWriter, AFileOrNothingWhereTheFolderIsToBe) {
    const TemporaryFolder folder;
    std::ofstream(folder.native("Pi")) << "x";
    expect_file_exception([&] { QCDWriter(folder.path(), "Pi", "3.", 1000, 0, 10); },
                          "FileIO::create_folder()", "Unable to create folder.", folder.path("Pi/"));
    expect_file_exception([&] { QCDWriter(folder.path("none"), "Pi", "3.", 1000, 0, 10); },
                          "FileIO::create_folder()", "Unable to create folder.", folder.path("none/Pi/"));
}

// A file that cannot be created is not skipped.
TEST(QCDWriter, AFolderWhereAFileIsToBe) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.native("Pi/Pi - 1.qcd"));
    QCDWriter writer(folder.path(), "Pi", "3.", 1000, 0, 10);
    std::string values = values_of(some_digits(1100, 10));
    const auto expect_failure = [&](std::uint64_t from) {
        expect_file_exception([&] { writer.write(values.data() + from, values.size() - from); },
                              "SequentialFile::create()", "Unable to create file.",
                              folder.path("Pi/Pi - 1.qcd"));
    };
    expect_failure(0);
    expect_failure(1000);
    EXPECT_EQ(writer.next_file_number(), 1u);
}

}  // namespace
}  // namespace qmp
