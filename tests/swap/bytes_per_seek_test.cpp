// How many bytes go for a seek: their limits, their default, and the question for them.
#include "swap/bytes_per_seek.h"

#include <gtest/gtest.h>

#include "support/console.h"

namespace {

using kelvara_test::FedInput;
using kelvara_test::printed_by;

TEST(BytesPerSeek, FollowTheDefaultUntilTheyAreChosen) {
    qmp::BytesPerSeek bytes(1 << 20);
    EXPECT_EQ(bytes.bytes(), 1u << 20);
    EXPECT_EQ(bytes.chosen(), 0u);
    bytes.follow(3 << 20);
    EXPECT_EQ(bytes.bytes(), 3u << 20);
    bytes.set(5000, 3 << 20);
    bytes.follow(1 << 20);
    EXPECT_EQ(bytes.bytes(), 5000u);
    EXPECT_EQ(bytes.chosen(), 5000u);
    bytes.set(0, 1 << 20);
    EXPECT_EQ(bytes.bytes(), 1u << 20);
    EXPECT_EQ(bytes.chosen(), 0u);
}

TEST(BytesPerSeek, AreKeptWithinTheirLimits) {
    qmp::BytesPerSeek bytes(1 << 20);
    bytes.set(1000, 0);
    EXPECT_EQ(bytes.bytes(), 4096u);
    bytes.set(1, 0);
    EXPECT_EQ(bytes.bytes(), 4096u);
    bytes.set(UINT64_MAX, 0);
    EXPECT_EQ(bytes.bytes(), 0x7fffffffffffffffu);
}

std::string ask(qmp::BytesPerSeek& bytes, const char* answer, std::uint64_t default_bytes) {
    return printed_by([&] {
        FedInput input(answer);
        qmp::ask_bytes_per_seek(bytes, default_bytes);
    });
}

TEST(BytesPerSeek, AreAskedFor) {
    qmp::BytesPerSeek bytes(6'291'456);
    EXPECT_EQ(ask(bytes, "256KB\n", 6'291'456),
              "\nMinimum I/O Blocksize (Bytes Per Seek):\n\n"
              "The \"Bytes/Seek\" parameter is a rough measure of the # of bytes that can be\n"
              "read or written sequentially in the same amount of time it takes to seek to\n"
              "a random address on the device.\n\n"
              "Kelvara uses the \"Bytes/Seek\" parameter to decide when to choose algorithms\n"
              "that have more disk seeks vs. algorithms that require more bytes of access.\n\n"
              "If Bytes/Seek is set too low, the computation will waste a lot of time\n"
              "performing expensive disk seeks. If Bytes/Seek is too high, the computation\n"
              "will be performing lots of extra unnecessary disk I/O in an attempt to avoid\n"
              "disk seeks which it thinks are expensive.\n\n"
              "Bytes/Seek only matters for very large computations that require many times\n"
              "more memory than there is ram. For small computations, it will not matter.\n\n"
              "Unfortunately, Kelvara cannot determine the optimal Bytes/Seek value by just\n"
              "reading the hardware. It must be determined by running the I/O benchmark.\n\n"
              "The default is 1 MB which is then scaled according to the swap configuration.\n\n"
              "Current Size:       6,291,456 (6.00 MiB)\n\n"
              "Enter the Bytes/Seek: (e.g. 256KB, 2MB, etc...)  0 resets to default value.\n"
              "Bytes: ");
    EXPECT_EQ(bytes.bytes(), 262'144u);
    ask(bytes, "1000\n", 6'291'456);
    EXPECT_EQ(bytes.chosen(), 4096u);
    ask(bytes, "0\n", 6'291'456);
    EXPECT_EQ(bytes.bytes(), 6'291'456u);
    EXPECT_EQ(bytes.chosen(), 0u);
}

}  // namespace
