#include "platform/text_cursor.h"

#include <algorithm>
#include <limits>

#include "errors/exception.h"

namespace qmp {
namespace {

[[noreturn]] void fail() {
    throw ParseException("TextCursor::read_integer()", "Unexpected end of string.");
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_space(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

bool TextCursor::skip_label() {
    if (rest_.empty()) fail();
    if (is_digit(rest_.front()) || rest_.front() == '-') return false;
    const std::size_t end = rest_.find_first_of("\t\n");
    if (end == std::string_view::npos || rest_[end] == '\n') fail();
    rest_.remove_prefix(end + 1);
    return true;
}

std::int64_t TextCursor::read_integer() {
    while (!rest_.empty() && is_space(rest_.front())) rest_.remove_prefix(1);
    const bool labelled = skip_label();
    const bool negative = !rest_.empty() && rest_.front() == '-';
    if (negative) rest_.remove_prefix(1);
    if (rest_.empty() || !is_digit(rest_.front())) fail();

    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    std::uint64_t value = 0;
    for (; !rest_.empty() && is_digit(rest_.front()); rest_.remove_prefix(1)) {
        value = value > largest / 10
                    ? largest
                    : std::min<std::uint64_t>(value * 10 + static_cast<std::uint64_t>(rest_.front() - '0'),
                                              largest);
    }
    // A record line that breaks off may have lost digits.
    if (rest_.empty() ? labelled : !is_space(rest_.front())) fail();
    return negative ? -static_cast<std::int64_t>(value) : static_cast<std::int64_t>(value);
}

}  // namespace qmp
