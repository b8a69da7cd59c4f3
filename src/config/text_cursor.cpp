#include "config/text_cursor.h"

#include <algorithm>
#include <bit>

#include "console/parse.h"
#include "errors/exception.h"

namespace qmp {
namespace {

constexpr std::string_view white_space = " \t\r\n";

[[noreturn]] void fail() {
    throw ParseException("", "Unexpected end of string.");
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_integer(std::string_view text) {
    if (text.starts_with('-')) text.remove_prefix(1);
    return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

}  // namespace

char TextCursor::take() {
    if (rest_.empty()) fail();
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
}

void TextCursor::skip_white_space() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(white_space), rest_.size()));
}

void TextCursor::skip_label() {
    const std::size_t end = rest_.find_first_of("\t\r\n");
    if (end == std::string_view::npos || rest_[end] != '\t') fail();
    rest_.remove_prefix(end + 1);
}

std::string TextCursor::take_integer() {
    std::string integer;
    for (char c = take(); c != '\n'; c = take()) {
        if (c != '\r') integer += c;
    }
    if (!is_integer(integer)) fail();
    return integer;
}

std::int64_t TextCursor::read_integer_field() {
    skip_label();
    return console::parse_signed(take_integer());
}

bool TextCursor::read_bool_field() {
    return read_integer_field() != 0;
}

double TextCursor::read_double_field() {
    skip_label();
    const std::string integer = take_integer();
    const bool negative = integer.front() == '-';
    const std::uint64_t magnitude =
        console::parse_decimal(std::string_view(integer).substr(negative ? 1 : 0));
    return std::bit_cast<double>(negative ? 0 - magnitude : magnitude);
}

std::string TextCursor::read_string_field() {
    skip_label();
    std::string text;
    for (char c = take(); c != '\n' && c != '*'; c = take()) {
        if (c != '\r') text += c;
    }
    return text;
}

std::int64_t TextCursor::read_integer() {
    skip_white_space();
    if (rest_.empty()) fail();
    if (!is_digit(rest_.front()) && rest_.front() != '-') return read_integer_field();

    const std::string_view integer = rest_.substr(0, rest_.find_first_of(white_space));
    if (!is_integer(integer)) fail();
    rest_.remove_prefix(integer.size());
    skip_white_space();
    return console::parse_signed(integer);
}

}  // namespace qmp
