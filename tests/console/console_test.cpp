// The output operations where output is not a console: plain UTF-8, without colour. Colours are tested on
// a pseudo-terminal.
#include "console/console.h"

#include <gtest/gtest.h>

#include "console/labels.h"
#include "console/output_buffer.h"
#include "support/standard_streams.h"

namespace qmp::console {
namespace {

using kelvara_test::CapturedOutput;
using kelvara_test::FedInput;

template <typename Operation>
std::string output_of(Operation&& operation) {
    CapturedOutput output;
    operation();
    return output.finish();
}

TEST(Console, AttributesOfTheColourLetters) {
    const struct {
        Colour letter;
        int attribute;
    } cases[] = {{'B', 9}, {'G', 10}, {'T', 11}, {'R', 12}, {'P', 13}, {'Y', 14},
                 {'b', 1}, {'g', 2},  {'t', 3},  {'r', 4},  {'p', 5},  {'y', 6},
                 {'w', 7}, {'W', 7},  {'x', 7},  {'\0', 7}, {' ', -1}};
    for (const auto& one : cases) EXPECT_EQ(colour_attribute(one.letter), one.attribute) << one.letter;
}

TEST(Console, WritesPlainTextToAFile) {
    EXPECT_EQ(output_of([] {
                  EXPECT_EQ(write("a\u20ac\U0001f600", 'R'), 4u);
                  EXPECT_EQ(println("x", 'G'), 2u);
                  EXPECT_EQ(println(""), 1u);
                  newline();
                  EXPECT_EQ(write("", 'B'), 0u);
              }),
              "a\u20ac\U0001f600x\n\n\n");
}

TEST(Console, ReplacesMalformedText) {
    EXPECT_EQ(output_of([] { println("a\xff\xe2\x82z"); }), "a\ufffd\ufffdz\n");
    EXPECT_EQ(output_of([] {
                  std::u16string lone(1, char16_t{0xd83d});
                  println_wide(lone);
              }),
              "\ufffd\n");
}

TEST(Console, EmptiesTheWideTextOfTheCaller) {
    std::u16string text = u"w\u00efde";
    EXPECT_EQ(output_of([&] { EXPECT_EQ(println_wide(text, 'Y'), 5u); }), "w\u00efde\n");
    EXPECT_TRUE(text.empty());
}

TEST(Console, LosesNothingOfALongText) {
    // Pairs of UTF-16 units at odd positions: a piece of 4,096 units would end inside one.
    std::string text = "x";
    while (text.size() < 6 * largest_piece) text += "\U0001f600";
    EXPECT_TRUE(output_of([&] { write(text); }) == text);
    const std::string exact(largest_piece, 'y');
    EXPECT_TRUE(output_of([&] { write(exact); }) == exact);
    EXPECT_TRUE(output_of([&] { println(exact + exact); }) == exact + exact + "\n");
}

TEST(Console, Warnings) {
    EXPECT_EQ(output_of([] { print_warning("Warning:"); }), "\nWarning:\n");
    EXPECT_EQ(output_of([] { print_warning("Warning:", true); }), "\nWarning:\n");
}

TEST(Console, Labels) {
    EXPECT_EQ(output_of([] { EXPECT_EQ(print_label("Size", "12", 'Y'), 8u); }), "Size: 12");
    EXPECT_EQ(output_of([] { EXPECT_EQ(print_label_line("Size", "12"), 9u); }), "Size: 12\n");
}

TEST(Console, ColumnsPadOrCutTheLabel) {
    EXPECT_EQ(output_of([] { EXPECT_EQ(print_column(8, "ab", "value", 'G'), 13u); }), "ab      value");
    EXPECT_EQ(output_of([] { print_column(8, "abcdefg", "v"); }), "abcdefg v");
    EXPECT_EQ(output_of([] { print_column(8, "abcdefgh", "v"); }), "abcdefg v");
    EXPECT_EQ(output_of([] { print_column(8, "a much longer label", "v"); }), "a much  v");
    EXPECT_EQ(output_of([] { print_column(1, "abc", "v"); }), " v");
    EXPECT_EQ(output_of([] { print_column(0, "abc", "v"); }), "v");
    EXPECT_EQ(output_of([] { print_column(4, "\u00e4\u00f6\u00fc\u00df", "v"); }), "\u00e4\u00f6\u00fc v");
    EXPECT_EQ(output_of([] { EXPECT_EQ(print_column_line(default_column, "Label:", "v"), 22u); }),
              "Label:              v\n");
}

TEST(Console, RightAligned) {
    EXPECT_EQ(output_of([] { EXPECT_EQ(print_right(5, "12", 'B'), 5u); }), "   12");
    EXPECT_EQ(output_of([] { print_right(2, "12"); }), "12");
    EXPECT_EQ(output_of([] { print_right(2, "1234"); }), "1234");
    EXPECT_EQ(output_of([] { print_right(3, "\u20ac"); }), "  \u20ac");
}

TEST(Console, Verdicts) {
    EXPECT_EQ(output_of([] { print_pass_fail(true); }), "Passed");
    EXPECT_EQ(output_of([] { print_pass_fail(false); }), "Failed");
    EXPECT_EQ(output_of([] { print_yes_no(true); }), "Yes\n");
    EXPECT_EQ(output_of([] { print_yes_no(false); }), "No\n");
}

TEST(Console, TypedLabels) {
    EXPECT_EQ(output_of([] {
                  print_label_signed("a", -1234);
                  print_label_signed_separated("b", -1234);
                  print_label_separated("c", 1234567, 'G');
                  print_label_bytes("d", 1536);
                  print_label_separated_bytes("e", 1048576);
                  print_label_fixed("f", 1.5, 2, 'R');
                  print_label_time("g", 125.5);
              }),
              "a: -1234\nb: -1,234\nc: 1,234,567\nd: 1.50 KiB\ne: 1,048,576 (1.00 MiB)\nf: 1.50\n"
              "g: 125.500 seconds  ( 2.092 minutes )\n");
    EXPECT_EQ(output_of([] {
                  print_column_signed(4, "a", -1234);
                  print_column_signed_separated(4, "b", -1234);
                  print_column_separated(4, "c", 1234567, 'G');
                  print_column_bytes(4, "d", 1536);
                  print_column_separated_bytes(4, "e", 1048576);
                  print_column_fixed(4, "f", 1.5, 2, 'R');
                  print_column_time(4, "g", 125.5);
              }),
              "a   -1234\nb   -1,234\nc   1,234,567\nd   1.50 KiB\ne   1,048,576 (1.00 MiB)\nf   1.50\n"
              "g   125.500 seconds  ( 2.092 minutes )\n");
}

TEST(Console, CountsWritesAndPauses) {
    const FedInput input("");
    CapturedOutput output;
    const std::uint64_t start = output_counter();
    write("a");
    println("b");
    newline();
    pause();
    set_color('R');
    const std::uint64_t counted = output_counter() - start;
    EXPECT_EQ(output.finish(), "ab\n\n");
    EXPECT_EQ(counted, 4u);
}

TEST(Console, PausesNotWithoutAKeyboard) {
    const FedInput input("");
    EXPECT_EQ(output_of([] { pause('R'); }), "");
}

TEST(Console, LeavesTheWindowWithoutAConsole) {
    CapturedOutput output;
    const bool changed = set_window_size(80, 25);
    EXPECT_EQ(output.finish(), "");
    EXPECT_FALSE(changed);
}

TEST(Console, RemembersWhetherColoursAreEnabled) {
    EXPECT_TRUE(colours_enabled());
    enable_colours(false);
    EXPECT_FALSE(colours_enabled());
    EXPECT_EQ(output_of([] { println("still written", 'R'); }), "still written\n");
    enable_colours(true);
    EXPECT_TRUE(colours_enabled());
}

TEST(Console, CountsCharacters) {
    EXPECT_EQ(count_characters(""), 0u);
    EXPECT_EQ(count_characters("a\u20ac\U0001f600"), 3u);
    EXPECT_EQ(count_characters("\xff\xff"), 2u);
    CapturedOutput output;
    const std::uint64_t columns = window_columns();
    output.finish();
    EXPECT_EQ(columns, 80u);
}

}  // namespace
}  // namespace qmp::console
