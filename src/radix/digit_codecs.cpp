#include "radix/digit_codecs.h"

#include "multiply/instruction_levels.h"
#include "platform/processor_features.h"
#include "radix/word_codecs.h"

namespace qmp {
namespace radix {

const WordCodecs& word_codecs() {
    switch (current_level()) {
        case InstructionLevel::avx512:
            return avx512_word_codecs();
        case InstructionLevel::avx2:
            return avx2_word_codecs();
        case InstructionLevel::scalar:
            return scalar_word_codecs();
        default:
            break;
    }
    // The level SSE2 has no more than its name says.
    const ProcessorFeatures& features = processor_features();
    return features.ssse3 && features.sse41 ? sse4_word_codecs() : scalar_word_codecs();
}

}  // namespace radix

using radix::word_codecs;

void u64_to_d19(char* raw, const Word* words, std::uint64_t n) {
    word_codecs().u64_to_d19(raw, words, n);
}
void u64_to_d19_text(char* text, const Word* words, std::uint64_t n) {
    word_codecs().u64_to_d19_text(text, words, n);
}
void u64_to_h16(char* raw, const Word* words, std::uint64_t n) {
    word_codecs().u64_to_h16(raw, words, n);
}
void u64_to_h16_text(char* text, const Word* words, std::uint64_t n) {
    word_codecs().u64_to_h16_text(text, words, n);
}
void u32_to_d8(char* raw, const std::uint32_t* words, std::uint64_t n) {
    word_codecs().u32_to_d8(raw, words, n);
}
void u32_to_d8_text(char* text, const std::uint32_t* words, std::uint64_t n) {
    word_codecs().u32_to_d8_text(text, words, n);
}
void u32_to_h8(char* raw, const std::uint32_t* words, std::uint64_t n) {
    word_codecs().u32_to_h8(raw, words, n);
}
void u32_to_h8_text(char* text, const std::uint32_t* words, std::uint64_t n) {
    word_codecs().u32_to_h8_text(text, words, n);
}
void d19_to_u64(Word* words, const char* raw, std::uint64_t n) {
    word_codecs().d19_to_u64(words, raw, n);
}
void h16_to_u64(Word* words, const char* raw, std::uint64_t n) {
    word_codecs().h16_to_u64(words, raw, n);
}
void unpack_d19(char* raw, const Word* words, std::uint64_t n) {
    word_codecs().unpack_d19(raw, words, n);
}
void unpack_d19_text(char* text, const Word* words, std::uint64_t n) {
    word_codecs().unpack_d19_text(text, words, n);
}
void unpack_h16(char* raw, const Word* words, std::uint64_t n) {
    word_codecs().unpack_h16(raw, words, n);
}
void unpack_h16_text(char* text, const Word* words, std::uint64_t n) {
    word_codecs().unpack_h16_text(text, words, n);
}
void pack_d19(Word* words, const char* raw, std::uint64_t n) {
    word_codecs().pack_d19(words, raw, n);
}
void pack_h16(Word* words, const char* raw, std::uint64_t n) {
    word_codecs().pack_h16(words, raw, n);
}

std::span<const DigitCodec> digit_codecs() {
    static const char* const bytes = "SSE2";  // character_codecs.cpp
    static const char* const halves = radix::sse4_word_codecs().level;
    static const char* const words = name_of(InstructionLevel::avx512);
    static const DigitCodec codecs[] = {
        {"raw_to_hex", bytes}, {"raw_to_dec", bytes}, {"hex_to_raw", bytes}, {"dec_to_raw", bytes},
        {"u32_to_h8", halves}, {"u32_to_d8", halves}, {"u64_to_h16", words}, {"u64_to_d19", words},
        {"h16_to_u64", words}, {"d19_to_u64", words},
    };
    return codecs;
}

}  // namespace qmp
