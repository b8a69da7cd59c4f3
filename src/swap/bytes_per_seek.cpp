#include "swap/bytes_per_seek.h"

#include <algorithm>

#include "console/console.h"
#include "console/input.h"
#include "console/labels.h"

namespace qmp {

void BytesPerSeek::set(std::uint64_t bytes, std::uint64_t default_bytes) {
    chosen_ = bytes != 0;
    bytes_ = std::clamp(chosen_ ? bytes : default_bytes, least, largest);
}

void ask_bytes_per_seek(BytesPerSeek& bytes_per_seek, std::uint64_t default_bytes) {
    console::println("\nMinimum I/O Blocksize (Bytes Per Seek):\n", 'P');
    console::println("The \"Bytes/Seek\" parameter is a rough measure of the # of bytes that can be", 'w');
    console::println("read or written sequentially in the same amount of time it takes to seek to");
    console::println("a random address on the device.");
    console::newline();
    console::println("Kelvara uses the \"Bytes/Seek\" parameter to decide when to choose algorithms");
    console::println("that have more disk seeks vs. algorithms that require more bytes of access.");
    console::newline();
    console::println("If Bytes/Seek is set too low, the computation will waste a lot of time");
    console::println("performing expensive disk seeks. If Bytes/Seek is too high, the computation");
    console::println("will be performing lots of extra unnecessary disk I/O in an attempt to avoid");
    console::println("disk seeks which it thinks are expensive.");
    console::newline();
    console::println("Bytes/Seek only matters for very large computations that require many times");
    console::println("more memory than there is ram. For small computations, it will not matter.");
    console::newline();
    console::println("Unfortunately, Kelvara cannot determine the optimal Bytes/Seek value by just");
    console::println("reading the hardware. It must be determined by running the I/O benchmark.");
    console::newline();
    console::println("The default is 1 MB which is then scaled according to the swap configuration.");
    console::newline();
    console::print_column_separated_bytes(console::default_column, "Current Size:", bytes_per_seek.bytes(),
                                          'G');
    console::newline();
    console::println("Enter the Bytes/Seek: (e.g. 256KB, 2MB, etc...)  0 resets to default value.", 'w');
    console::write("Bytes: ");
    bytes_per_seek.set(console::read_bytes('T'), default_bytes);
}

}  // namespace qmp
