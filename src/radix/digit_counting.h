// How often each digit value occurs.
#pragma once

#include <array>
#include <cstdint>

namespace qmp::radix {

using DigitCounts = std::array<std::uint64_t, 16>;

// Adds the occurrences of the values below `radix` (10 or 16) among n digit values to the counts. Other
// values are not counted.
void count_digits(DigitCounts& counts, const char* values, std::uint64_t n, std::uint32_t radix);

}  // namespace qmp::radix
