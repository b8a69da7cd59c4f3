#include "platform/os/unicode.h"

#include <cstdint>

namespace qmp::os {
namespace {

constexpr char32_t replacement = 0xfffd;

bool is_high_surrogate(char32_t unit) {
    return unit >= 0xd800 && unit <= 0xdbff;
}
bool is_low_surrogate(char32_t unit) {
    return unit >= 0xdc00 && unit <= 0xdfff;
}

// How many continuation bytes follow a lead byte, and the range of the first of them. The range keeps out
// overlong forms, surrogates and characters beyond U+10FFFF.
struct Lead {
    int continuations = -1;
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xbf;
};

Lead classify_lead(std::uint8_t byte) {
    if (byte < 0x80) return {0};
    if (byte >= 0xc2 && byte <= 0xdf) return {1};
    if (byte == 0xe0) return {2, 0xa0, 0xbf};
    if (byte == 0xed) return {2, 0x80, 0x9f};
    if (byte >= 0xe1 && byte <= 0xef) return {2};
    if (byte == 0xf0) return {3, 0x90, 0xbf};
    if (byte >= 0xf1 && byte <= 0xf3) return {3};
    if (byte == 0xf4) return {3, 0x80, 0x8f};
    return {};
}

}  // namespace

DecodedCharacter decode_utf8(std::string_view text) {
    const auto first = static_cast<std::uint8_t>(text[0]);
    const Lead lead = classify_lead(first);
    if (lead.continuations < 0) return {replacement, 1};
    if (lead.continuations == 0) return {first, 1};

    char32_t character = first & (0x3fu >> lead.continuations);
    std::uint8_t low = lead.low, high = lead.high;
    for (int i = 1; i <= lead.continuations; ++i) {
        const auto position = static_cast<std::size_t>(i);
        if (position >= text.size()) return {replacement, position};
        const auto byte = static_cast<std::uint8_t>(text[position]);
        if (byte < low || byte > high) return {replacement, position};
        character = (character << 6) | (byte & 0x3fu);
        low = 0x80;
        high = 0xbf;
    }
    return {character, static_cast<std::size_t>(lead.continuations) + 1};
}

DecodedCharacter decode_utf16(std::u16string_view text) {
    const char32_t first = text[0];
    if (is_high_surrogate(first) && text.size() > 1 && is_low_surrogate(text[1])) {
        return {0x10000 + ((first - 0xd800) << 10) + (text[1] - 0xdc00u), 2};
    }
    if (is_high_surrogate(first) || is_low_surrogate(first)) return {replacement, 1};
    return {first, 1};
}

std::size_t encode_utf8(char32_t character, char* destination) {
    if (character < 0x80) {
        destination[0] = static_cast<char>(character);
        return 1;
    }
    const std::size_t length = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    for (std::size_t i = length - 1; i > 0; --i) {
        destination[i] = static_cast<char>(0x80 | (character & 0x3f));
        character >>= 6;
    }
    destination[0] = static_cast<char>((0xf00u >> length) | character);
    return length;
}

std::size_t encode_utf16(char32_t character, char16_t* destination) {
    if (character < 0x10000) {
        destination[0] = static_cast<char16_t>(character);
        return 1;
    }
    character -= 0x10000;
    destination[0] = static_cast<char16_t>(0xd800 + (character >> 10));
    destination[1] = static_cast<char16_t>(0xdc00 + (character & 0x3ff));
    return 2;
}

std::u16string to_utf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter decoded = decode_utf8(text);
        char16_t units[2];
        result.append(units, encode_utf16(decoded.character, units));
        text.remove_prefix(decoded.length);
    }
    return result;
}

std::string to_utf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter decoded = decode_utf16(text);
        char bytes[4];
        result.append(bytes, encode_utf8(decoded.character, bytes));
        text.remove_prefix(decoded.length);
    }
    return result;
}

}  // namespace qmp::os
