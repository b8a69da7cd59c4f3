#include "config/notation_parser.h"

#include <utility>

#include "config/text_file.h"
#include "errors/exception.h"
#include "platform/os/unicode.h"

namespace qmp::notation {
namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_white_space(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text.substr(0, text.find('\0'))) {}

    std::unique_ptr<Value> read_value();

  private:
    [[noreturn]] void fail(const std::string& message) const {
        throw ParseException("", "Line " + std::to_string(line_ + 1) + ": " + message);
    }
    [[noreturn]] void fail_at_end() const { fail("Unexpected null character or end of file."); }

    bool at_end() const { return position_ == text_.size(); }
    // The next character; the text must not have ended.
    char next() const {
        if (at_end()) fail_at_end();
        return text_[position_];
    }
    // Consumes the next character, which is there.
    void advance() {
        if (text_[position_++] == '\n') ++line_;
    }
    bool at_comment() const { return text_.compare(position_, 2, "//") == 0; }

    // Over white space and comments, to a character that is there.
    void skip();
    // Over a comment, up to its line feed.
    void skip_comment();
    void enter() {
        if (++depth_ > deepest_nesting) fail("Nesting is too deep.");
    }

    // The type of the value whose first character is next.
    Type next_type() const;
    void read(Integer& integer);
    void read(String& string);
    void read(Array& array);
    void read(Object& object);
    std::string read_key();
    // The character behind a backslash, consumed together.
    char read_escaped();

    std::string_view text_;
    std::size_t position_ = 0;
    std::uint64_t line_ = 0;
    std::uint64_t depth_ = 0;
};

void Parser::skip_comment() {
    const std::size_t end = text_.find('\n', position_);
    position_ = end == std::string_view::npos ? text_.size() : end;
}

void Parser::skip() {
    for (;;) {
        if (at_comment()) {
            skip_comment();
        } else if (is_white_space(next())) {
            advance();
        } else {
            return;
        }
    }
}

Type Parser::next_type() const {
    switch (next()) {
        case '"':
            return Type::string;
        case '[':
            return Type::array;
        case '{':
            return Type::object;
        case ']':
            fail("Unexpected ']'.");
        case '}':
            fail("Unexpected '}'.");
        default:
            return Type::integer;
    }
}

std::unique_ptr<Value> Parser::read_value() {
    skip();
    const Type type = next_type();
    std::unique_ptr<Value> value = make_value(type);
    switch (type) {
        case Type::integer:
            read(static_cast<Integer&>(*value));
            break;
        case Type::string:
            read(static_cast<String&>(*value));
            break;
        case Type::array:
            read(static_cast<Array&>(*value));
            break;
        case Type::object:
            read(static_cast<Object&>(*value));
            break;
    }
    return value;
}

void Parser::read(Integer& integer) {
    const bool negative = next() == '-';
    if (negative) advance();
    if (!is_digit(next())) fail("Invalid integer literal.");
    std::uint64_t magnitude = 0;
    for (; !at_end() && is_digit(next()); advance()) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(next() - '0');
    }
    integer.value = static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);

    // What ends with a digit may have lost more of them: the end of the text is an error here.
    const char follower = next();
    const bool separated = is_white_space(follower) || at_comment();
    if (!separated && follower != ']' && follower != '}') fail("Invalid integer literal.");
}

char Parser::read_escaped() {
    advance();
    const char c = next();
    if (c != '"' && c != '\\') {
        const std::string_view rest = text_.substr(position_);
        fail("Invalid escape character: " + std::string(rest.substr(0, os::decode_utf8(rest).length)));
    }
    advance();
    return c;
}

void Parser::read(String& string) {
    advance();
    for (;;) {
        const char c = next();
        if (c == '\\') {
            string.value += read_escaped();
            continue;
        }
        advance();
        if (c == '"') return;
        string.value += c;
    }
}

void Parser::read(Array& array) {
    enter();
    advance();
    for (skip(); next() != ']'; skip()) array.append(read_value());
    advance();
    --depth_;
}

void Parser::read(Object& object) {
    enter();
    advance();
    for (skip(); next() != '}'; skip()) {
        std::string key = read_key();
        skip();
        if (next() != ':') fail("Expected colon after identifier.");
        advance();
        if (!object.try_insert(std::move(key), read_value())) fail("Duplicate key in object.");
    }
    advance();
    --depth_;
}

std::string Parser::read_key() {
    std::string key;
    for (;;) {
        const char c = next();
        if (is_white_space(c) || c == '"' || c == ':' || at_comment()) return key;
        if (c == '\\') {
            key += read_escaped();
        } else if (is_identifier_character(c)) {
            key += c;
            advance();
        } else {
            fail("Invalid character in identifier.");
        }
    }
}

}  // namespace

std::unique_ptr<Value> parse(std::string_view text) {
    return Parser(text).read_value();
}

std::unique_ptr<Value> parse_file(const std::string& path) {
    return parse(read_text_file(path).text);
}

bool is_identifier_character(char c) {
    constexpr std::string_view punctuation = "!#$%&'()*+-./=?@^_|~";
    return is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           punctuation.find(c) != std::string_view::npos;
}

}  // namespace qmp::notation
