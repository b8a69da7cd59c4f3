// Digit values to characters and back, byte for byte. The vectors are SSE2, which every x86-64 has.
#include <emmintrin.h>

#include "radix/digit_codecs.h"

namespace qmp {
namespace {

struct ValueToDecimal {
    static unsigned char scalar(unsigned char v) { return static_cast<unsigned char>(v + '0'); }
    static __m128i vector(__m128i v) { return _mm_add_epi8(v, _mm_set1_epi8('0')); }
};

struct ValueToHexadecimal {
    static unsigned char scalar(unsigned char v) {
        return static_cast<unsigned char>(v + (v <= 9 ? '0' : 'a' - 10));
    }
    static __m128i vector(__m128i v) {
        const __m128i digit = _mm_cmpeq_epi8(_mm_min_epu8(v, _mm_set1_epi8(9)), v);
        const __m128i letter = _mm_andnot_si128(digit, _mm_set1_epi8('a' - '0' - 10));
        return _mm_add_epi8(_mm_add_epi8(v, _mm_set1_epi8('0')), letter);
    }
};

// Decoders also report whether the byte was a digit: all bits set, or none.
struct DecimalToValue {
    static unsigned char scalar(unsigned char c, bool& valid) {
        const unsigned char v = static_cast<unsigned char>(c - '0');
        valid &= v <= 9;
        return v;
    }
    static __m128i vector(__m128i c, __m128i& valid) {
        const __m128i v = _mm_sub_epi8(c, _mm_set1_epi8('0'));
        valid = _mm_and_si128(valid, _mm_cmpeq_epi8(_mm_min_epu8(v, _mm_set1_epi8(9)), v));
        return v;
    }
};

struct HexadecimalToValue {
    static unsigned char scalar(unsigned char c, bool& valid) {
        const unsigned char v = static_cast<unsigned char>(c - '0');
        const unsigned char letter = static_cast<unsigned char>(c - 'a');
        valid &= v <= 9 || letter <= 5;
        return v <= 9 ? v : static_cast<unsigned char>(letter + 10);
    }
    static __m128i vector(__m128i c, __m128i& valid) {
        const __m128i v = _mm_sub_epi8(c, _mm_set1_epi8('0'));
        const __m128i letter = _mm_sub_epi8(c, _mm_set1_epi8('a'));
        const __m128i is_digit = _mm_cmpeq_epi8(_mm_min_epu8(v, _mm_set1_epi8(9)), v);
        const __m128i is_letter = _mm_cmpeq_epi8(_mm_min_epu8(letter, _mm_set1_epi8(5)), letter);
        valid = _mm_and_si128(valid, _mm_or_si128(is_digit, is_letter));
        return _mm_or_si128(_mm_and_si128(is_digit, v),
                            _mm_andnot_si128(is_digit, _mm_add_epi8(letter, _mm_set1_epi8(10))));
    }
};

__m128i load(const char* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
void store(char* p, __m128i v) {
    _mm_store_si128(reinterpret_cast<__m128i*>(p), v);
}

// Bytes before the destination's next 16-byte boundary.
std::uint64_t prologue(const char* destination, std::uint64_t n) {
    const std::uint64_t bytes = -reinterpret_cast<std::uintptr_t>(destination) & 15;
    return bytes < n ? bytes : n;
}

template <typename Code>
void encode(char* text, const char* raw, std::uint64_t n) {
    const auto bytewise = [&](std::uint64_t i, std::uint64_t end) {
        for (; i < end; ++i) text[i] = static_cast<char>(Code::scalar(static_cast<unsigned char>(raw[i])));
    };
    std::uint64_t i = prologue(text, n);
    bytewise(0, i);
    for (; i + 64 <= n; i += 64) {
        for (std::uint64_t k = i; k < i + 64; k += 16) store(text + k, Code::vector(load(raw + k)));
    }
    for (; i + 16 <= n; i += 16) store(text + i, Code::vector(load(raw + i)));
    bytewise(i, n);
}

template <typename Code>
bool decode(char* raw, const char* text, std::uint64_t n) {
    bool valid = true;
    const auto bytewise = [&](std::uint64_t i, std::uint64_t end) {
        for (; i < end; ++i)
            raw[i] = static_cast<char>(Code::scalar(static_cast<unsigned char>(text[i]), valid));
    };
    std::uint64_t i = prologue(raw, n);
    bytewise(0, i);
    __m128i vector_valid = _mm_set1_epi8(-1);
    for (; i + 64 <= n; i += 64) {
        for (std::uint64_t k = i; k < i + 64; k += 16)
            store(raw + k, Code::vector(load(text + k), vector_valid));
    }
    for (; i + 16 <= n; i += 16) store(raw + i, Code::vector(load(text + i), vector_valid));
    bytewise(i, n);
    return valid && _mm_movemask_epi8(vector_valid) == 0xffff;
}

}  // namespace

void raw_to_dec(char* text, const char* raw, std::uint64_t n) {
    encode<ValueToDecimal>(text, raw, n);
}
void raw_to_hex(char* text, const char* raw, std::uint64_t n) {
    encode<ValueToHexadecimal>(text, raw, n);
}
bool dec_to_raw(char* raw, const char* text, std::uint64_t n) {
    return decode<DecimalToValue>(raw, text, n);
}
bool hex_to_raw(char* raw, const char* text, std::uint64_t n) {
    return decode<HexadecimalToValue>(raw, text, n);
}

}  // namespace qmp
