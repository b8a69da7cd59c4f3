// The output drivers with real files behind them.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "digitfiles/digit_file_name.h"
#include "digitfiles/files.h"
#include "digitfiles/open_digit_file.h"
#include "digitfiles/text_writer.h"
#include "radix/convert_fixture.h"
#include "radix/hash.h"
#include "radix/output_fixture.h"

namespace qmp {
namespace {

using kelvara_test::Number;

const ParallelContext one_task = ParallelContext::sequential();

OpenSink text_file(const std::string& path, std::uint32_t radix) {
    return [path, radix](const std::string& first_digits) {
        return std::make_unique<TextWriter>(path, first_digits, true, radix);
    };
}

// 22/7 in n words.
Number twenty_two_sevenths(std::uint64_t n) {
    std::vector<Word> words(n);
    Word rest = 1;
    for (std::uint64_t i = n; i-- > 0;) {
        const DoubleWord dividend = static_cast<DoubleWord>(rest) << 64;
        words[i] = static_cast<Word>(dividend / 7);
        rest = static_cast<Word>(dividend % 7);
    }
    return Number(words, 3);
}

TEST(DigitOutputFiles, DecimalAndHexadecimal) {
    const kelvara_test::TemporaryFolder folder;
    const Number x = twenty_two_sevenths(300);
    SilentProgress progress;
    const kelvara_test::Twiddles twiddles(decimal_output_largest_product(5000));
    const ComputeContext context{one_task, twiddles.get(), nullptr, &progress};

    const std::string decimal_path = digit_file_name(folder.path(), "Ratio", 10, "Division");
    const DigitOutput output = write_decimal(context, x.view(), 5000, text_file(decimal_path, 10));
    const auto reader = OpenDigitFile(decimal_path, false, 0);
    ASSERT_EQ(reader->get_digits(), 5000u);
    EXPECT_EQ(reader->get_first_digits(2), "3.");
    std::string digits(5000, '\0');
    reader->read(0, digits.data(), 5000);
    for (std::size_t i = 0; i < 5000; ++i) ASSERT_EQ(digits[i], "142857"[i % 6]) << i;
    EXPECT_EQ(hash_digits(3, digits), output.hash);

    const std::string hexadecimal_path = digit_file_name(folder.path(), "Ratio", 16, "Division");
    write_hexadecimal(context, x.view(), 4800, text_file(hexadecimal_path, 16));
    const auto hexadecimal = OpenDigitFile(hexadecimal_path, false, 0);
    EXPECT_EQ(hexadecimal->get_radix(), 10u) << "1/7 = 0.249249... needs no letters";
    digits.assign(4800, '\0');
    hexadecimal->read(0, digits.data(), 4800);
    for (std::size_t i = 0; i < 4800; ++i) ASSERT_EQ(digits[i], "249"[i % 3]) << i;
}

// A disk that fills while digits are written stops the output with the writer's exception.
TEST(DigitOutputFiles, AFullDisk) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
    const Number x = twenty_two_sevenths(20);
    SilentProgress progress;
    const kelvara_test::Twiddles twiddles(decimal_output_largest_product(100));
    const ComputeContext context{one_task, twiddles.get(), nullptr, &progress};
    const OpenSink open = [](const std::string&) {
        return std::make_unique<TextWriter>("/dev/full", "", true, 10);
    };
    EXPECT_THROW(write_decimal(context, x.view(), 100, open), FileIO::FileException);
    EXPECT_THROW(write_hexadecimal(context, x.view(), 100, open), FileIO::FileException);
}

}  // namespace
}  // namespace qmp
