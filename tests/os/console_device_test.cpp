// The contract of the console device where there is no console: CTest gives tests none.
#include "platform/os/console_device.h"

#include <gtest/gtest.h>

#include "platform/os/unicode.h"
#include "support/standard_streams.h"

namespace qmp::os {
namespace {

using kelvara_test::CapturedOutput;
using kelvara_test::FedInput;

TEST(ConsoleDevice, AFileIsNoConsole) {
    CapturedOutput output;
    const FedInput input("");
    const bool output_console = output_is_console(), input_console = input_is_console(),
               rewritten = console_rewrites_lines(), fresh = console_is_fresh();
    const WindowSize window = window_size(), largest = largest_window_size();
    const bool resized = set_window_rectangle(79, 24);
    EXPECT_EQ(output.finish(), "");
    EXPECT_FALSE(output_console);
    EXPECT_FALSE(input_console);
    EXPECT_FALSE(rewritten);
    EXPECT_FALSE(fresh);
    EXPECT_EQ(window.columns, 0);
    EXPECT_EQ(window.rows, 0);
    EXPECT_EQ(largest.columns, 0);
    EXPECT_FALSE(resized);
}

TEST(ConsoleDevice, WritesBytesAsTheyAre) {
    std::string bytes("\0\r\n\xff\x1b[31m", 9);
    for (int i = 0; i < 16; ++i) bytes += bytes;
    CapturedOutput output;
    write_bytes(bytes);
    write_bytes("");
    EXPECT_TRUE(output.finish() == bytes);
}

TEST(ConsoleDevice, ReadsLinesOfAFile) {
    const FedInput input("first\nsecond\r\n\nlast");
    EXPECT_EQ(read_bytes(), "first\n");
    EXPECT_EQ(read_bytes(), "second\r\n");
    EXPECT_EQ(read_bytes(), "\n");
    EXPECT_EQ(read_bytes(), "last");
    EXPECT_EQ(read_bytes(), std::nullopt);
    EXPECT_EQ(read_bytes(), std::nullopt);
}

TEST(ConsoleDevice, CutsLongLinesIntoChunks) {
    const std::string line = std::string(10'000, 'x') + "\n";
    const FedInput input(line + "y\n");
    std::string read;
    while (read.size() < line.size()) {
        const std::optional<std::string> chunk = read_bytes();
        ASSERT_TRUE(chunk.has_value());
        ASSERT_LE(chunk->size(), largest_read);
        ASSERT_FALSE(chunk->empty());
        read += *chunk;
    }
    EXPECT_EQ(read, line);
    EXPECT_EQ(read_bytes(), "y\n");
    EXPECT_EQ(read_bytes(), std::nullopt);
}

TEST(ConsoleDevice, WaitsForNoKeyWithoutAKeyboard) {
    const FedInput input("x");
    EXPECT_FALSE(wait_for_key());
    EXPECT_EQ(read_bytes(), "x");
    EXPECT_EQ(read_bytes(), std::nullopt);
}

}  // namespace
}  // namespace qmp::os
