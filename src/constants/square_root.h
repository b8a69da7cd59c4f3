// Square roots: which arguments make sense.
#pragma once

#include <cstdint>

namespace kelvara {

// Exact for every 64-bit n.
bool is_perfect_square(std::uint64_t n);

}  // namespace kelvara
