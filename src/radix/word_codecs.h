// The word codecs of digit_codecs.h at each instruction-set level, for the choice at run time and for
// tests. Every level gives the same digits.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp::radix {

struct WordCodecs {
    const char* level;
    void (*u64_to_d19)(char* raw, const Word* words, std::uint64_t n);
    void (*u64_to_d19_text)(char* text, const Word* words, std::uint64_t n);
    void (*u64_to_h16)(char* raw, const Word* words, std::uint64_t n);
    void (*u64_to_h16_text)(char* text, const Word* words, std::uint64_t n);
    void (*u32_to_d8)(char* raw, const std::uint32_t* words, std::uint64_t n);
    void (*u32_to_d8_text)(char* text, const std::uint32_t* words, std::uint64_t n);
    void (*u32_to_h8)(char* raw, const std::uint32_t* words, std::uint64_t n);
    void (*u32_to_h8_text)(char* text, const std::uint32_t* words, std::uint64_t n);
    void (*d19_to_u64)(Word* words, const char* raw, std::uint64_t n);
    void (*h16_to_u64)(Word* words, const char* raw, std::uint64_t n);
    void (*unpack_d19)(char* raw, const Word* words, std::uint64_t n);
    void (*unpack_d19_text)(char* text, const Word* words, std::uint64_t n);
    void (*unpack_h16)(char* raw, const Word* words, std::uint64_t n);
    void (*unpack_h16_text)(char* text, const Word* words, std::uint64_t n);
    void (*pack_d19)(Word* words, const char* raw, std::uint64_t n);
    void (*pack_h16)(Word* words, const char* raw, std::uint64_t n);
};

// Which of the words holds the first digits: the last one, as in a number, or the first one, as in a file.
enum class Order { number, file };

// Of the i-th of n words in the order of their digits.
constexpr std::uint64_t word_index(Order order, std::uint64_t i, std::uint64_t n) {
    return order == Order::number ? n - 1 - i : i;
}

const WordCodecs& scalar_word_codecs();
// Needs SSSE3 and SSE4.1.
const WordCodecs& sse4_word_codecs();
// Need what the level AVX2 or AVX-512 needs (multiply/instruction_levels.h).
const WordCodecs& avx2_word_codecs();
const WordCodecs& avx512_word_codecs();
// Those of the current level.
const WordCodecs& word_codecs();

}  // namespace qmp::radix
