#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "digitfiles/files.h"
#include "digitfiles/ordalis/recompress.h"
#include "digitfiles/ordalis/write_compressed.h"
#include "digitfiles/ordalis/write_text.h"
#include "digitfiles/qcd_writer.h"
#include "digitfiles/text_reader.h"
#include "support/console.h"

namespace Ordalis {
namespace {

using kelvara_test::printed_by;
using kelvara_test::TemporaryFile;
using kelvara_test::TemporaryFolder;

constexpr std::uint64_t digits_per_file = 1000000;
constexpr std::uint64_t digits = 2500000;

std::string text_of(std::uint32_t radix) {
    std::string text = "3.";
    std::uint64_t state = 88172645463325252u;
    while (text.size() < digits + 2) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        text += "0123456789abcdef"[(state >> 32) % radix];
    }
    return text;
}

std::string content_of(const std::string& path) {
    std::ifstream file(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A result in both formats.
class Conversions : public testing::TestWithParam<std::uint32_t> {
  protected:
    void compress(std::uint64_t in_file, const std::string& folder) {
        qmp::TextReader reader(text_.path());
        const CompressedOutput output{folder_.path(folder), "x", in_file};
        qmp::FileIO::create_folder(folder_.path(folder));
        printed_by([&] { write_compressed(reader, 0, digits, output, 0); });
    }
    void recompress(std::uint64_t in_file, std::uint64_t first, std::uint64_t last,
                    const std::string& folder) {
        qmp::QCDReader reader(folder_.path("source/x/x - 2.qcd"));
        const FileRange range = range_of_files(reader, in_file, first, last);
        const CompressedOutput output{folder_.path(folder), result_name(reader.common_prefix()), in_file};
        qmp::FileIO::create_folder(folder_.path(folder));
        check_destination(reader, output);
        printed_by([&] { write_compressed(reader, range.start, range.end, output, first); });
    }
    std::string content(const std::string& name) { return content_of(folder_.path(name)); }
    bool exists(const std::string& name) { return std::filesystem::exists(folder_.native(name)); }

    TemporaryFile text_{"digits.txt", text_of(GetParam())};
    TemporaryFolder folder_;
};

TEST_P(Conversions, TextComesBackByteForByte) {
    compress(digits_per_file, "source");
    EXPECT_TRUE(exists("source/x/x - 2.qcd"));
    EXPECT_FALSE(exists("source/x/x - 3.qcd"));
    qmp::QCDReader reader(folder_.path("source/x/x - 2.qcd"), true);
    EXPECT_EQ(printed_by([&] { write_text(reader, 0, digits, folder_.path("back.txt")); }),
              "Streaming:  2,500,000  digits written\n");
    EXPECT_EQ(content("back.txt"), text_.content());
}

TEST_P(Conversions, APartOfTheTextHasNoPoint) {
    compress(digits_per_file, "source");
    qmp::QCDReader reader(folder_.path("source/x/x - 0.qcd"));
    printed_by([&] { write_text(reader, 1, 1000002, folder_.path("part.txt")); });
    EXPECT_EQ(content("part.txt"), text_.content().substr(3, 1000001));
    EXPECT_THROW(qmp::TextReader(folder_.path("part.txt")), qmp::FileIO::FileException);
}

TEST_P(Conversions, RecompressedPartsAreThoseOfADirectCompression) {
    compress(digits_per_file, "source");
    compress(1200000, "direct");
    recompress(1200000, 1, 2, "parts");
    EXPECT_FALSE(exists("parts/x/x - 0.qcd"));
    EXPECT_EQ(content("parts/x/x - 1.qcd"), content("direct/x/x - 1.qcd"));
    EXPECT_EQ(content("parts/x/x - 2.qcd"), content("direct/x/x - 2.qcd"));
    recompress(1200000, 0, 0, "parts");
    EXPECT_EQ(content("parts/x/x - 0.qcd"), content("direct/x/x - 0.qcd"));
}

TEST_P(Conversions, ASingleFileLiesInTheFolderItself) {
    compress(qmp::unlimited_digits_per_file, ".");
    EXPECT_TRUE(exists("x - 0.qcd"));
    EXPECT_FALSE(exists("x - 1.qcd"));
    qmp::QCDReader reader(folder_.path("x - 0.qcd"));
    EXPECT_EQ(reader.get_digits(), digits);
}

INSTANTIATE_TEST_SUITE_P(Radix, Conversions, testing::Values(10, 16),
                         [](const auto& test) { return test.param == 10 ? "Decimal" : "Hexadecimal"; });

TEST(FileRanges, AreCutToTheDigitsThatThereAre) {
    const TemporaryFile text("digits.txt", "3." + std::string(250, '1'));
    qmp::TextReader reader(text.path());
    const auto expect_range = [&](std::uint64_t in_file, std::uint64_t first, std::uint64_t last,
                                  std::uint64_t start, std::uint64_t end) {
        const FileRange range = range_of_files(reader, in_file, first, last);
        EXPECT_EQ(range.start, start);
        EXPECT_EQ(range.end, end);
    };
    expect_range(100, 0, 0, 0, 100);
    expect_range(100, 1, 1, 100, 200);
    expect_range(100, 2, 5, 200, 250);
    expect_range(100, 3, 5, 300, 250);
    expect_range(100, 2, 1, 200, 200);
    const std::uint64_t largest = ~std::uint64_t{0};
    expect_range(100, 0, largest, 0, 250);
    expect_range(100, largest, largest, largest, 250);
    expect_range(largest, 1, 1, largest, 250);
}

TEST(ResultNames, AreWhatFileNamesBeginWith) {
    EXPECT_EQ(result_name("Pi - Dec - Chudnovsky (1988) - "), "Pi - Dec - Chudnovsky (1988)");
    EXPECT_EQ(result_name("Pi--  "), "Pi");
    EXPECT_EQ(result_name("-Pi"), "-Pi");
    EXPECT_EQ(result_name("Pi"), "Pi");
    EXPECT_EQ(result_name(" - "), "Name");
    EXPECT_EQ(result_name(""), "Name");
}

}  // namespace
}  // namespace Ordalis
