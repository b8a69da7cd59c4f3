// Reference values of the constants, from tests/data/constants.csv: made by two independent arithmetic
// libraries that agree.
#pragma once

#include <cstdint>
#include <string>

namespace kelvara_test {

struct ReferenceDigits {
    std::uint64_t digits = 0;      // decimal, after the point
    std::uint64_t hash = 0;        // Floor(x 10^digits) mod (2^61 - 1)
    std::string last50;            // decimal
    std::string sha256;            // of the text "I.FFF..."
    std::string digit_counts;      // "93 116 ...": how often 0 to 9 occur
    std::uint64_t hex_digits = 0;  // after the point
    std::string hex_last50;
    std::string hex_sha256;  // of the hexadecimal text
};

// The row of a constant ("pi", "sqrt(2)") and a decimal digit count; fails the test when there is none.
ReferenceDigits reference_digits(const std::string& constant, std::uint64_t digits);

}  // namespace kelvara_test
