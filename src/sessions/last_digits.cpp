#include "sessions/last_digits.h"

#include <algorithm>

namespace kelvara {

std::vector<DigitLine> last_digit_lines(const std::string& digits, std::uint64_t last_position) {
    constexpr std::size_t line_digits = 50;
    constexpr std::size_t group_digits = 10;
    std::vector<DigitLine> lines;
    for (std::size_t line = 0; line < digits.size(); line += line_digits) {
        const std::size_t end = std::min(line + line_digits, digits.size());
        DigitLine& next = lines.emplace_back();
        for (std::size_t group = line; group < end; group += group_digits) {
            if (group > line) next.digits += ' ';
            next.digits.append(digits, group, std::min(group_digits, end - group));
        }
        next.position = last_position - (digits.size() - end);
    }
    return lines;
}

}  // namespace kelvara
