#include "sessions/reference_digits.h"

#include <algorithm>
#include <string>

#include "console/console.h"
#include "console/parse.h"

namespace kelvara {
namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// The number that the text begins with, behind blanks; stops at the first character that is neither a digit
// nor a comma. One that does not fit saturates.
std::uint64_t take_number(std::string_view& text) {
    std::string digits;
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    for (; !text.empty(); text.remove_prefix(1)) {
        const char c = text.front();
        if (c == ',') continue;
        if (c < '0' || c > '9') break;
        digits += c;
    }
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    return qmp::console::parse_decimal(digits);
}

}  // namespace

ReferenceDigits parse_reference_digits(std::string_view text) {
    ReferenceDigits entries;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::uint64_t position = take_number(line);
        if (line.empty() || line.front() != '|' || position < reference_group) continue;
        line.remove_prefix(1);
        if (!entries.emplace(position, take_number(line)).second) {
            qmp::console::print_warning("Error parsing digit file: Duplicate entries.");
        }
    }
    return entries;
}

}  // namespace kelvara
