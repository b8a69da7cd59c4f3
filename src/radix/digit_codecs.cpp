#include "radix/digit_codecs.h"

#include "platform/processor_features.h"
#include "radix/word_codecs.h"

namespace qmp {
namespace radix {

const WordCodecs& word_codecs() {
    static const WordCodecs& best =
        processor_features().ssse3 && processor_features().sse41 ? sse4_word_codecs() : scalar_word_codecs();
    return best;
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
    static const char* const words = radix::sse4_word_codecs().level;
    static const DigitCodec codecs[] = {
        {"raw_to_hex", bytes}, {"raw_to_dec", bytes}, {"hex_to_raw", bytes}, {"dec_to_raw", bytes},
        {"u32_to_h8", words},  {"u32_to_d8", words},  {"u64_to_h16", words}, {"u64_to_d19", words},
        {"h16_to_u64", words}, {"d19_to_u64", words},
    };
    return codecs;
}

}  // namespace qmp
