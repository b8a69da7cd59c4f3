#include "platform/os/unicode.h"

#include <gtest/gtest.h>

namespace qmp::os {
namespace {

TEST(Unicode, ConvertsEveryLengthBothWays) {
    const std::string utf8 = "a\u00e9\u20ac\U0001f600\U0010ffff";
    const std::u16string utf16 = u"a\u00e9\u20ac\U0001f600\U0010ffff";
    EXPECT_EQ(to_utf16(utf8), utf16);
    EXPECT_EQ(to_utf8(utf16), utf8);
    EXPECT_EQ(to_utf16(""), u"");
    EXPECT_EQ(to_utf8(u""), "");
}

TEST(Unicode, KeepsEveryCharacterAtTheLengthBoundaries) {
    for (const char32_t character :
         {0x1u, 0x7fu, 0x80u, 0x7ffu, 0x800u, 0xd7ffu, 0xe000u, 0xfffdu, 0xffffu, 0x10000u, 0x10ffffu}) {
        char bytes[4];
        const std::size_t count = encode_utf8(character, bytes);
        const DecodedCharacter decoded = decode_utf8({bytes, count});
        EXPECT_EQ(decoded.character, character);
        EXPECT_EQ(decoded.length, count);
        char16_t units[2];
        const std::size_t unit_count = encode_utf16(character, units);
        EXPECT_EQ(decode_utf16({units, unit_count}).character, character);
    }
}

TEST(Unicode, KeepsZeroCharacters) {
    EXPECT_EQ(to_utf16(std::string_view("a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(Unicode, ReplacesEachMalformedPart) {
    const struct {
        std::string text;
        std::u16string expected;
    } cases[] = {
        {"\xff", u"\ufffd"},
        {"\x80x", u"\ufffdx"},
        {"\xc0\xaf", u"\ufffd\ufffd"},                      // overlong '/'
        {"\xe0\x80\xaf", u"\ufffd\ufffd\ufffd"},            // overlong '/'
        {"\xed\xa0\x80", u"\ufffd\ufffd\ufffd"},            // a surrogate
        {"\xf4\x90\x80\x80", u"\ufffd\ufffd\ufffd\ufffd"},  // beyond the last character
        {"\xf5\x80\x80\x80", u"\ufffd\ufffd\ufffd\ufffd"},
        {"\xe2\x82", u"\ufffd"},  // cut at the end
        {"\xe2\x82z", u"\ufffdz"},
        {"\xf0\x9f\x98", u"\ufffd"},
        {"\xc3(", u"\ufffd("},
    };
    for (const auto& one : cases) EXPECT_EQ(to_utf16(one.text), one.expected) << one.text;
}

TEST(Unicode, ReplacesLoneSurrogates) {
    const char16_t high_then_letter[] = {0xd83d, u'a'};
    const char16_t low_first[] = {0xde00, 0xd83d};
    EXPECT_EQ(to_utf8({high_then_letter, 2}), "\ufffda");
    EXPECT_EQ(to_utf8({low_first, 2}), "\ufffd\ufffd");
}

TEST(Unicode, NeverReadsBehindTheText) {
    // Every lead byte at the very end of a text that goes on in memory.
    for (int lead = 0; lead < 256; ++lead) {
        const char bytes[] = {static_cast<char>(lead), '\x80', '\x80', '\x80'};
        EXPECT_EQ(decode_utf8({bytes, 1}).length, 1u);
        for (std::size_t size = 1; size <= 4; ++size) EXPECT_LE(decode_utf8({bytes, size}).length, size);
    }
}

}  // namespace
}  // namespace qmp::os
