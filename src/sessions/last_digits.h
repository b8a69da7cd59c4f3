// The last digits of a result as they are shown: in lines of 50, in groups of 10, with positions.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelvara {

struct DigitLine {
    std::string digits;      // groups of 10 with a blank between them
    std::uint64_t position;  // of the last of them, counted from 1 behind the point
};

// `digits` end at position `last_position`.
std::vector<DigitLine> last_digit_lines(const std::string& digits, std::uint64_t last_position);

}  // namespace kelvara
