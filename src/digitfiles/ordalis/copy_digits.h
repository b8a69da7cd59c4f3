// Streams digits from one file into others.
#pragma once

#include <cstdint>

#include "digitfiles/digit_reader.h"
#include "radix/digit_sink.h"

namespace Ordalis {

// Digits that are read and written at a time: bytes of memory, too.
constexpr std::uint64_t digits_at_once = 67108864;

// Copies the digits [start, end), as the reader delivers them, and finishes the sink. A line that is
// rewritten tells how many have been written; where lines cannot be rewritten, it is written once, at the
// end.
void copy_digits(qmp::DigitReader& reader, std::uint64_t start, std::uint64_t end, qmp::DigitSink& sink,
                 std::uint64_t block_digits = digits_at_once);

}  // namespace Ordalis
