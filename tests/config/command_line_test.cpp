#include "config/command_line.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

using Pair = CommandLine::Pair;

TEST(CommandLine, SplitsAtTheFirstColon) {
    const CommandLine line({"C:\\kelvara.exe", "custom", "sqrt:2", "-o", "D:\\a:b", ":x", "y:", ""});
    EXPECT_EQ(line.size(), 8u);
    EXPECT_EQ(line.pair(0), (Pair{"C", "\\kelvara.exe"}));
    EXPECT_EQ(line.pair(1), (Pair{"custom", ""}));
    EXPECT_EQ(line.pair(2), (Pair{"sqrt", "2"}));
    EXPECT_EQ(line.pair(4), (Pair{"D", "\\a:b"}));
    EXPECT_EQ(line.argument(4), "D:\\a:b");
    EXPECT_EQ(line.pair(5), (Pair{"", "x"}));
    EXPECT_EQ(line.pair(6), (Pair{"y", ""}));
    EXPECT_EQ(line.pair(7), (Pair{"", ""}));
}

TEST(CommandLine, ConsumesFromTheSecondArgumentOn) {
    CommandLine line({"kelvara", "custom", "pi:3", "-o"});
    EXPECT_EQ(line.index(), 1u);
    EXPECT_EQ(line.current(), "custom");
    EXPECT_EQ(line.current_key(), "custom");
    EXPECT_EQ(line.index(), 1u);
    EXPECT_EQ(line.take_argument(), "custom");
    EXPECT_EQ(line.current_pair(), (Pair{"pi", "3"}));
    EXPECT_EQ(line.take_pair(), (Pair{"pi", "3"}));
    EXPECT_TRUE(line.has_more());
    EXPECT_EQ(line.take_argument(), "-o");
    EXPECT_FALSE(line.has_more());
    EXPECT_EQ(line.index(), line.size());
}

template <typename Operation>
void expect_complaint(Operation&& operation) {
    try {
        operation();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const qmp::CommandLine::CommandLineException& exception) {
        EXPECT_STREQ(exception.what(), "Expected more parameters.");
    }
}

TEST(CommandLine, ComplainsWhenNothingRemains) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"kelvara"}, {}}) {
        CommandLine line(arguments);
        EXPECT_FALSE(line.has_more());
        expect_complaint([&] { line.current(); });
        expect_complaint([&] { line.current_pair(); });
        expect_complaint([&] { line.current_key(); });
        expect_complaint([&] { line.take_argument(); });
        expect_complaint([&] { line.take_pair(); });
        EXPECT_EQ(line.index(), 1u);
    }
}

}  // namespace
}  // namespace kelvara
