#include "shell/option_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errors/exception.h"
#include "shell/bench_action.h"
#include "shell/custom_action.h"

namespace kelvara {
namespace {

using Seen = std::vector<std::string>;

CommandLine arguments(std::vector<std::string> list) {
    list.insert(list.begin(), "kelvara");
    return CommandLine(std::move(list));
}

const OptionTable<Seen> table = {
    {"-one", [](Seen& seen, CommandLine& c) { seen.push_back("one=" + take_value(c)); }},
    {"-two",
     [](Seen& seen, CommandLine& c) {
         c.take_argument();
         seen.push_back("two=" + c.take_argument());
     }},
};

void note_unknown(Seen& seen, CommandLine& command_line) {
    seen.push_back("?" + command_line.take_argument());
}

TEST(OptionTable, HandsEveryArgumentToItsHandler) {
    CommandLine command_line = arguments({"-one:1:2", "-two", "-one:3", "-one", "other:4", "-ONE:5"});
    Seen seen;
    parse_options(table, seen, command_line, note_unknown);
    EXPECT_EQ(seen, (Seen{"one=1:2", "two=-one:3", "one=", "?other:4", "?-ONE:5"}));
    EXPECT_FALSE(command_line.has_more());
}

TEST(OptionTable, AMissingArgumentIsAnException) {
    CommandLine command_line = arguments({"-two"});
    Seen seen;
    try {
        parse_options(table, seen, command_line);
        FAIL();
    } catch (const qmp::CommandLine::CommandLineException& exception) {
        EXPECT_STREQ(exception.what(), "Expected more parameters.");
    }
}

TEST(OptionTable, NothingToParse) {
    CommandLine command_line = arguments({});
    Seen seen;
    parse_options(table, seen, command_line);
    EXPECT_TRUE(seen.empty());
}

// The message of the exception that an action ends with; empty when it ends with none.
std::string refusal(void (*action)(CommandLine&), std::vector<std::string> list) {
    CommandLine command_line = arguments(std::move(list));
    try {
        action(command_line);
    } catch (const qmp::InvalidParametersException& exception) {
        return exception.message();
    } catch (const std::exception& exception) {
        return exception.what();
    }
    return {};
}

TEST(BenchAction, RefusesWhatIsNoBenchmark) {
    EXPECT_EQ(refusal(run_bench_action, {"bench", "-PF:none"}), "No benchmark size selected.");
    EXPECT_EQ(refusal(run_bench_action, {"bench", "3b:1"}), "Invalid Command: 3b:1");
    EXPECT_EQ(refusal(run_bench_action, {"bench", "-TD:8"}), "Expected more parameters.");
    EXPECT_EQ(refusal(run_bench_action, {"bench", "-TD:8", "25m"}),
              "Task decomposition must be between 1 and 65,536.");
}

TEST(CustomAction, RefusesOptionsOfAnotherMode) {
    for (const char* key : {"-M", "-minIO", "-swap"}) {
        EXPECT_EQ(refusal(run_custom_action, {"custom", "pi", std::string(key) + ":4G"}),
                  "Option " + std::string(key) + " is not supported for this mode.");
    }
    EXPECT_EQ(refusal(run_custom_action, {"custom", "pi", "-mode:other"}), "Invalid Command: -mode:other");
    EXPECT_EQ(refusal(run_custom_action, {"custom", "pi", "-o"}), "Expected more parameters.");
}

}  // namespace
}  // namespace kelvara
