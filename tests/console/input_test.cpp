// The readers where input is not a console: UTF-8 lines.
#include "console/input.h"

#include <gtest/gtest.h>

#include "support/standard_streams.h"

namespace qmp::console {
namespace {

using kelvara_test::CapturedOutput;
using kelvara_test::FedInput;

// What `read` returns for this input, and what it printed.
template <typename Reader>
auto answer_to(std::string_view typed, Reader&& read, std::string* printed = nullptr) {
    const FedInput input(typed);
    CapturedOutput output;
    const auto answer = read();
    const std::string text = output.finish();
    if (printed) *printed = text;
    return answer;
}

std::uint64_t times(const std::string& text, const std::string& part) {
    std::uint64_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

TEST(Input, ReadsLinesOfEitherSystem) {
    const FedInput input(
        "\xef\xbb\xbf"
        "first\r\nsecond\n\n \u20ac\U0001f600 \t\nlast");
    EXPECT_EQ(read_line_or_end(), "first");
    EXPECT_EQ(read_line_or_end(), "second");
    EXPECT_EQ(read_line_or_end(), "");
    EXPECT_EQ(read_line_or_end(), " \u20ac\U0001f600 ");
    EXPECT_EQ(read_line_or_end(), "last");
    EXPECT_EQ(read_line_or_end(), std::nullopt);
    EXPECT_EQ(read_line_or_end(), std::nullopt);
}

TEST(Input, ReadsLongLinesWhole) {
    // Three-byte characters: chunks end inside one.
    std::string line;
    while (line.size() < 5000) line += "\u20ac";
    const FedInput input(line + "\nnext\n");
    EXPECT_TRUE(read_line_or_end() == line);
    EXPECT_EQ(read_line(), "next");
    EXPECT_EQ(read_line_or_end(), std::nullopt);
}

TEST(Input, ReplacesMalformedInput) {
    EXPECT_EQ(answer_to("a\xff\n", [] { return read_line(); }), "a\ufffd");
}

TEST(Input, LabelledLines) {
    std::string printed;
    EXPECT_EQ(answer_to(
                  "C:\\digits\n", [] { return read_labelled_line("Path", 'T'); }, &printed),
              "C:\\digits");
    EXPECT_EQ(printed, "Path: ");
}

TEST(Input, Integers) {
    EXPECT_EQ(answer_to("-12 apples\n", [] { return read_int('T'); }), -12);
    EXPECT_EQ(answer_to("\n", [] { return read_int(); }), 0);
    EXPECT_EQ(answer_to("2.5G\n", [] { return read_bytes(); }), std::uint64_t{5} << 29);
}

TEST(Input, AsksAgainUntilTheAnswerIsInRange) {
    const std::string garbage =
        "\nletters\n-5\n0\n10\n99999999999999999999999999\n-99999999999999999999999999\n\xff\n";
    std::string printed;
    EXPECT_EQ(answer_to(
                  garbage + "7th\n", [] { return read_int_in_range("option: ", 1, 9, 'T'); }, &printed),
              7);
    EXPECT_EQ(times(printed, "option: "), 9u);
}

TEST(Input, AnEmptyAnswerIsZero) {
    EXPECT_EQ(answer_to("\n", [] { return read_int_in_range("option: ", 0, 9); }), 0);
    EXPECT_EQ(answer_to("letters\n", [] { return read_int_in_range("option: ", 0, 9); }), 0);
}

TEST(Input, DigitCountsInRange) {
    const auto ask = [] { return read_digit_count_in_range("digits: ", 100, 1'000'000'000'000); };
    EXPECT_EQ(answer_to("1,000,000\n", ask), 1'000'000u);
    EXPECT_EQ(answer_to("99\n-1m\n2t\n\nmany\n25M\n", ask), 26'214'400u);
    EXPECT_EQ(answer_to("10B\n10b\n", ask), 10'000'000'000u);
    const auto ask_any = [] { return read_digit_count_in_range("n = ", 2, ~std::uint64_t{0}); };
    EXPECT_EQ(answer_to("18446744073709551616\n18446744073709551615\n", ask_any), ~std::uint64_t{0});
}

TEST(Input, TheDigitCountScreen) {
    std::string printed;
    EXPECT_EQ(answer_to(
                  "250m\n", [] { return ask_digit_count("Decimal Digits: ", 100, 1'000'000'000); }, &printed),
              250'000'000u);
    EXPECT_EQ(printed,
              "Enter the number of digits: (e.g. \"1000000\", \"25m\", \"10b\")\n\n"
              "Suffixes:\n"
              "    m = 1,000,000         ( 10^6 )\n"
              "    b = 1,000,000,000     ( 10^9 )\n"
              "    t = 1,000,000,000,000 ( 10^12 )\n"
              "    K = 1,024             ( 2^10 )\n"
              "    M = 1,048,576         ( 2^20 )\n"
              "    G = 1,073,741,824     ( 2^30 )\n"
              "    T = 1,099,511,627,776 ( 2^40 )\n"
              "\nDecimal Digits: ");
}

TEST(Input, TheDigitCountScreenAsksAgainForWhatIsOutOfRange) {
    const auto ask = [] { return ask_digit_count("Digits: ", 100, 1'000'000'000); };
    std::string printed;
    EXPECT_EQ(answer_to("\nletters\n-250m\n99\n1,000,000,001\n10b\n99999999999999999999E\n1 G \n250 m\n", ask,
                        &printed),
              250'000'000u);
    EXPECT_EQ(times(printed, "Digits: "), 9u);
    EXPECT_EQ(times(printed, "Suffixes:"), 1u);
}

TEST(Input, TheDigitCountScreenTakesBothKindsOfSuffixes) {
    const auto ask = [] { return ask_digit_count("Digits: ", 0, ~std::uint64_t{0}); };
    EXPECT_EQ(answer_to("25m\n", ask), 25'000'000u);
    EXPECT_EQ(answer_to("25M\n", ask), 26'214'400u);
    EXPECT_EQ(answer_to("10B\n", ask), 10u);
    EXPECT_EQ(answer_to("\n", ask), 0u);
    EXPECT_EQ(answer_to("15E\n", ask), std::uint64_t{15} << 60);
}

TEST(Input, BytesOfEveryForm) {
    const std::pair<const char*, std::uint64_t> answers[] = {
        {"\n", 0},
        {"letters\n", 0},
        {"-5G\n", 0},
        {"12345\n", 12345},
        {"12.9\n", 12},
        {"768MB\n", std::uint64_t{768} << 20},
        {"2.5 gb\n", std::uint64_t{5} << 29},
        {".5k\n", 512},
        {"1.0001K\n", 1025},
        {"15E\n", std::uint64_t{15} << 60},
        {"16E\n", ~std::uint64_t{0}},
        {"99999999999999999999999\n", ~std::uint64_t{0}},
        {"1B\n", 1},
        {"1.9B\n", 1},
    };
    for (const auto& [typed, bytes] : answers) {
        EXPECT_EQ(answer_to(typed, [] { return read_bytes('T'); }), bytes) << typed;
    }
}

TEST(Input, TheMemoryCapScreen) {
    std::string printed;
    EXPECT_EQ(answer_to("768MB\n", ask_memory_cap, &printed), std::uint64_t{768} << 20);
    EXPECT_EQ(printed,
              "Please Select a Memory Cap:\n\n"
              "Enter a memory limit: (e.g. 768MB, 2.5GB, etc...)\n"
              "Bytes: ");
    EXPECT_EQ(answer_to("99999E\n", ask_memory_cap), largest_memory_cap);
    EXPECT_EQ(answer_to("8070450532247928825\n", ask_memory_cap), 0x6ffffffffffffff9u);
    EXPECT_EQ(answer_to("8070450532247928826\n", ask_memory_cap), 0x6ffffffffffffff9u);
    EXPECT_EQ(answer_to("8070450532247928824\n", ask_memory_cap), 0x6ffffffffffffff8u);
    // Whether no memory at all makes sense is for the caller to say.
    EXPECT_EQ(answer_to("\n", ask_memory_cap), 0u);
    EXPECT_EQ(answer_to("-1G\n", ask_memory_cap), 0u);
}

}  // namespace
}  // namespace qmp::console
