// UTF-8 inside the program, UTF-16 at a console.
//
// Malformed input is never lost and never an error: each maximal malformed part becomes U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qmp::os {

// The character at the front of a non-empty text and how many units it takes.
struct DecodedCharacter {
    char32_t character = 0;
    std::size_t length = 0;
};

DecodedCharacter decode_utf8(std::string_view text);
DecodedCharacter decode_utf16(std::u16string_view text);

// Writes the character's units and returns their number, at most 4 bytes or 2 UTF-16 units.
std::size_t encode_utf8(char32_t character, char* destination);
std::size_t encode_utf16(char32_t character, char16_t* destination);

std::u16string to_utf16(std::string_view text);
std::string to_utf8(std::u16string_view text);

}  // namespace qmp::os
