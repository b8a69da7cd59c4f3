// Reads the text of a configuration value.
//
// A value is an object { KEY : VALUE ... }, an array [ VALUE ... ], a string "..." in which a backslash
// stands before a quote and a backslash, or a decimal integer. White space alone separates; "//" begins a
// comment that ends with its line. Comments are not kept. The text ends at its end or at a NUL.
//
// One value is read. What follows it is not looked at: a file may go on with anything.
// An integer is taken modulo 2^64, and white space, a comment, ']' or '}' must follow it.
//
// Every error is a ParseException with an empty function and the message "Line N: TEXT", N from 1.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "config/notation.h"

namespace qmp::notation {

// Objects and arrays inside each other: more is an error, so that no text can exhaust the stack. Settings
// nest a few levels deep.
constexpr std::uint64_t deepest_nesting = 1000;

std::unique_ptr<Value> parse(std::string_view text);
// The value in a file of any encoding that text_file.h reads. A file that cannot be read is a FileException.
std::unique_ptr<Value> parse_file(const std::string& path);

// Whether a key can hold the character as it stands: letters, digits and !#$%&'()*+-./=?@^_|~.
bool is_identifier_character(char c);

}  // namespace qmp::notation
