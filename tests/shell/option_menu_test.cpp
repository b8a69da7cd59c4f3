#include "shell/option_menu.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "console/console.h"
#include "support/console.h"

namespace kelvara {
namespace {

using kelvara_test::FedInput;
using kelvara_test::printed_by;

// One action and two tests, the second of which fails.
OptionMenu example_menu() {
    const auto say = [](const char* text, bool result) {
        return [=] {
            qmp::console::println(text);
            return result;
        };
    };
    return {"Title",
            {{"First", 'T', [] { qmp::console::println("(first)"); }, {}},
             {"Second", 'Y', {}, say("(second)", true)},
             {"Third", 'R', {}, say("(third)", false)}}};
}

std::string shown(bool run_all, std::string_view typed, const OptionMenu& menu = example_menu()) {
    const FedInput input(typed);
    return printed_by([&] { show_option_menu(menu, run_all); });
}

TEST(OptionMenu, NumbersFromZero) {
    EXPECT_EQ(shown(false, "0\n"),
              "Title\n\n"
              "  0         First\n"
              "  1         Second\n"
              "  2         Third\n"
              "\noption: \n(first)\n");
    EXPECT_TRUE(shown(false, "1\n").ends_with("option: \n(second)\n"));
    // The result of a test that was chosen alone is not told.
    EXPECT_TRUE(shown(false, "2\n").ends_with("option: \n(third)\n"));
}

TEST(OptionMenu, WithRunAllNumbersFromOne) {
    EXPECT_EQ(shown(true, "1\n"),
              "Title\n\n"
              "  0         Run All\n"
              "  1         First\n"
              "  2         Second\n"
              "  3         Third\n"
              "\noption: \n(first)\n");
    EXPECT_TRUE(shown(true, "3\n").ends_with("option: \n(third)\n"));
}

TEST(OptionMenu, RunsAllInOrder) {
    const std::string text = shown(true, "0\n");
    EXPECT_EQ(text.substr(text.find("option: ")),
              "option: \n"
              "First\n(first)\n\n"
              "Second\n(second)\n\n"
              "Third\n(third)\n\nTests Failed\n\n");
}

TEST(OptionMenu, AcceptsTheNumbersShown) {
    EXPECT_TRUE(shown(false, "3\n-1\n99999999999999999999\n2\n")
                    .ends_with("option: option: option: option: \n(third)\n"));
    EXPECT_TRUE(shown(true, "4\n-1\n99999999999999999999\n3\n")
                    .ends_with("option: option: option: option: \n(third)\n"));
    // An answer without digits is 0.
    EXPECT_TRUE(shown(false, "\n").ends_with("(first)\n"));
    EXPECT_TRUE(shown(false, "letters\n").ends_with("(first)\n"));
}

TEST(OptionMenu, WhatAnEntryThrowsEscapes) {
    OptionMenu menu = example_menu();
    menu.entries[1].test = []() -> bool { throw std::runtime_error("broken"); };
    for (const bool run_all : {false, true}) {
        const FedInput input(run_all ? "0\n" : "1\n");
        const std::string text =
            printed_by([&] { EXPECT_THROW(show_option_menu(menu, run_all), std::runtime_error); });
        EXPECT_EQ(text.find("(third)"), std::string::npos);
        EXPECT_EQ(text.find("(first)") != std::string::npos, run_all);
    }
}

TEST(OptionMenu, LongMenusKeepTheirColumns) {
    OptionMenu menu{"Title", {}};
    for (int i = 0; i < 101; ++i) menu.entries.push_back({"x", 'T', [] {}, {}});
    const std::string text = shown(false, "100\n", menu);
    EXPECT_NE(text.find("\n  9         x\n 10         x\n"), std::string::npos);
    EXPECT_NE(text.find("\n 99         x\n100         x\n\noption: "), std::string::npos);
}

}  // namespace
}  // namespace kelvara
