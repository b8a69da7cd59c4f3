// What the digit extractor is to compute, and its limits.
#pragma once

#include <cstdint>

#include "constants/bbp/terms.h"

namespace kelvara::bbp {

constexpr std::uint64_t largest_offset = (std::uint64_t{1} << 46) - 1;
constexpr std::uint64_t smallest_digits = 8;
constexpr std::uint64_t largest_digits = 1048576;
constexpr std::uint64_t largest_threads = 65536;
// Computed behind the digits that are asked for: rounding errors and later terms stay within them.
constexpr std::uint64_t guard_digits = 16;

struct Settings {
    Formula formula = Formula::plouffe;
    // Hexadecimal digits behind the point that are left out.
    std::uint64_t offset = 1000000000;
    std::uint64_t digits = 32;
    std::uint64_t threads = 1;
    bool pin_threads = true;

    // With the guard digits.
    std::uint64_t working_digits() const { return digits + guard_digits; }
    // The accumulator, in words of 32 bits, which are 8 digits each.
    std::uint64_t precision_words() const { return (working_digits() + 7) / 8; }
    std::uint64_t precision_digits() const { return 8 * precision_words(); }
};

// For this machine: as many threads as it has active processors.
Settings default_settings();

}  // namespace kelvara::bbp
