// Between words and the digits they hold.
//
// Word arrays are little-endian (word 0 is the least significant), digit strings big-endian: n words give
// 19 n decimal digits (words in base 10^19) or 16 n hexadecimal digits (binary words), word n - 1 first;
// 32-bit words hold 8 digits each. Raw digits are byte values 0 to 9 or 0 to 15, text digits the
// characters '0' to '9' and 'a' to 'f'. Nothing is asked of alignment; sources and destinations of the
// word codecs do not overlap. Words outside their base, and raw values outside the radix, give unspecified
// digits.
#pragma once

#include <cstdint>
#include <span>

#include "multiply/word.h"

namespace qmp {

constexpr std::uint64_t decimal_word_base = 10000000000000000000u;  // 10^19
constexpr std::uint64_t decimal_digits_per_decimal_word = 19;
constexpr std::uint64_t hexadecimal_digits_per_word = 16;

// Words to digits.
void u64_to_d19(char* raw, const Word* words, std::uint64_t n);
void u64_to_d19_text(char* text, const Word* words, std::uint64_t n);
void u64_to_h16(char* raw, const Word* words, std::uint64_t n);
void u64_to_h16_text(char* text, const Word* words, std::uint64_t n);
void u32_to_d8(char* raw, const std::uint32_t* words, std::uint64_t n);
void u32_to_d8_text(char* text, const std::uint32_t* words, std::uint64_t n);
void u32_to_h8(char* raw, const std::uint32_t* words, std::uint64_t n);
void u32_to_h8_text(char* text, const std::uint32_t* words, std::uint64_t n);

// Raw digits to n words.
void d19_to_u64(Word* words, const char* raw, std::uint64_t n);
void h16_to_u64(Word* words, const char* raw, std::uint64_t n);

// The same with word 0 first, as compressed digit files have them.
void unpack_d19(char* raw, const Word* words, std::uint64_t n);
void unpack_d19_text(char* text, const Word* words, std::uint64_t n);
void unpack_h16(char* raw, const Word* words, std::uint64_t n);
void unpack_h16_text(char* text, const Word* words, std::uint64_t n);
void pack_d19(Word* words, const char* raw, std::uint64_t n);
void pack_h16(Word* words, const char* raw, std::uint64_t n);

// Raw values to characters; the destination may be the source.
void raw_to_dec(char* text, const char* raw, std::uint64_t n);
void raw_to_hex(char* text, const char* raw, std::uint64_t n);
// Characters to values; the destination may be the source. The whole range is converted; false when a
// character is not a digit of the radix (upper-case letters are not).
bool dec_to_raw(char* raw, const char* text, std::uint64_t n);
bool hex_to_raw(char* raw, const char* text, std::uint64_t n);

// A codec and the instruction set of its fastest kernel in this build.
struct DigitCodec {
    const char* name;
    const char* instruction_set;
};
std::span<const DigitCodec> digit_codecs();

}  // namespace qmp
