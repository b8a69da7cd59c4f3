// The operations that end the program, in a copy of the process whose output is captured with it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "console/console.h"
#include "console/input.h"
#include "support/standard_streams.h"

namespace qmp::console {
namespace {

using kelvara_test::CapturedOutput;
using kelvara_test::FedInput;

std::uint64_t times(const std::string& text, const std::string& part) {
    std::uint64_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

TEST(ConsoleDeathTest, FatalErrorsEndTheProgram) {
    const FedInput input("");
    CapturedOutput output;
    EXPECT_EXIT(fatal_error("Invalid Parameter: nonsense"), testing::ExitedWithCode(1), "");
    EXPECT_EQ(output.finish(), "\n\nInvalid Parameter: nonsense\n\n\n");
    EXPECT_EXIT(terminate(5), testing::ExitedWithCode(5), "");
}

TEST(InputDeathTest, TheEndOfInputEndsTheProgram) {
    const std::string message = "There is no more input: the program ends here.\n";
    const std::vector<void (*)()> readers = {
        [] { read_line('T'); },
        [] { read_int_in_range("option: ", 1, 9); },
        [] { read_digit_count_in_range("digits: ", 100, 200); },
        [] { ask_memory_cap(); },
        [] { ask_digit_count("Digits: ", 100, 200); },
        [] { read_labelled_line("Path", 'T'); },
        [] { read_int('T'); },
        [] { read_bytes('T'); },
    };
    for (const auto read : readers) {
        const FedInput input("");
        CapturedOutput output;
        EXPECT_EXIT(read(), testing::ExitedWithCode(1), "");
        const std::string printed = output.finish();
        EXPECT_EQ(times(printed, message), 1u) << printed;
        EXPECT_TRUE(printed.ends_with(message)) << printed;
    }
    const FedInput input("-1\n99\n");
    CapturedOutput output;
    EXPECT_EXIT(read_int_in_range("option: ", 1, 9), testing::ExitedWithCode(1), "");
    EXPECT_EQ(times(output.finish(), "option: "), 3u);
}

}  // namespace
}  // namespace qmp::console
