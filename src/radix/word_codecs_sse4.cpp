// The word codecs with 128-bit vectors: sixteen digits at a time.
#include <smmintrin.h>
#include <tmmintrin.h>

#include "radix/word_codecs.h"

namespace qmp::radix {
namespace {

constexpr Word ten_8 = 100000000;
constexpr Word ten_16 = ten_8 * ten_8;

void store(char* digits, __m128i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(digits), v);
}
__m128i load(const void* p) {
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
}

// Four values below 10^8 in, in the order in which their digits are wanted.
struct Digits32 {
    __m128i first, second;
};

// Eight digits of each of four lanes. Quotients are products with rounded-up reciprocals, exact over
// their ranges: x / 10^4 for x < 10^8, x / 100 for x < 10^4, x / 10 for x < 100.
Digits32 decimal_bytes(__m128i v) {
    const __m128i reciprocal = _mm_set1_epi32(static_cast<int>(3518437209u));  // 2^45 / 10^4
    const __m128i even = _mm_srli_epi64(_mm_mul_epu32(v, reciprocal), 45);
    const __m128i odd = _mm_srli_epi64(_mm_mul_epu32(_mm_srli_epi64(v, 32), reciprocal), 45);
    const __m128i high = _mm_or_si128(even, _mm_slli_epi64(odd, 32));
    const __m128i low = _mm_sub_epi32(v, _mm_mullo_epi32(high, _mm_set1_epi32(10000)));
    const __m128i fours = _mm_or_si128(high, _mm_slli_epi32(low, 16));
    const __m128i hundreds = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);
    const __m128i rest = _mm_sub_epi16(fours, _mm_mullo_epi16(hundreds, _mm_set1_epi16(100)));
    const auto split = [](__m128i twos) {
        const __m128i tens = _mm_mulhi_epu16(twos, _mm_set1_epi16(6554));
        const __m128i ones = _mm_sub_epi16(twos, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
        return _mm_or_si128(tens, _mm_slli_epi16(ones, 8));
    };
    return {split(_mm_unpacklo_epi16(hundreds, rest)), split(_mm_unpackhi_epi16(hundreds, rest))};
}

// The nibbles of sixteen bytes, whose order is reversed by `order` first.
Digits32 hexadecimal_bytes(__m128i v, __m128i order) {
    const __m128i bytes = _mm_shuffle_epi8(v, order);
    const __m128i mask = _mm_set1_epi8(0x0f);
    const __m128i high = _mm_and_si128(_mm_srli_epi16(bytes, 4), mask);
    const __m128i low = _mm_and_si128(bytes, mask);
    return {_mm_unpacklo_epi8(high, low), _mm_unpackhi_epi8(high, low)};
}

template <bool text>
__m128i decimal_character(__m128i v) {
    return text ? _mm_add_epi8(v, _mm_set1_epi8('0')) : v;
}

template <bool text>
__m128i hexadecimal_character(__m128i v) {
    const __m128i characters =
        _mm_setr_epi8('0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd', 'e', 'f');
    return text ? _mm_shuffle_epi8(characters, v) : v;
}

// The three leading digits, in a four-byte store that the digits behind it overwrite in part.
template <bool text>
void store_head(char* digits, Word top) {
    const std::uint32_t v = static_cast<std::uint32_t>(top);
    const std::uint32_t hundreds = v * 5243 >> 19;
    const std::uint32_t rest = v - hundreds * 100;
    const std::uint32_t tens = rest * 103 >> 10;
    const std::uint32_t bytes = hundreds | tens << 8 | (rest - tens * 10) << 16;
    const std::uint32_t characters = text ? bytes + 0x303030 : bytes;
    __builtin_memcpy(digits, &characters, sizeof(characters));
}

template <bool text, Order order>
void u64_to_decimal(char* digits, const Word* words, std::uint64_t n) {
    // Two words in the order of their digits: head and two groups of eight digits each.
    const auto convert = [](char* out, Word first, Word second, bool both) {
        const Word first_rest = first % ten_16;
        const Word second_rest = second % ten_16;
        const __m128i groups =
            _mm_setr_epi32(static_cast<int>(first_rest / ten_8), static_cast<int>(first_rest % ten_8),
                           static_cast<int>(second_rest / ten_8), static_cast<int>(second_rest % ten_8));
        const Digits32 d = decimal_bytes(groups);
        store_head<text>(out, first / ten_16);
        store(out + 3, decimal_character<text>(d.first));
        if (both) {
            store_head<text>(out + 19, second / ten_16);
            store(out + 22, decimal_character<text>(d.second));
        }
    };
    std::uint64_t i = 0;
    for (; i + 2 <= n; i += 2, digits += 38) {
        convert(digits, words[word_index(order, i, n)], words[word_index(order, i + 1, n)], true);
    }
    if (i < n) convert(digits, words[word_index(order, i, n)], 0, false);
}

template <bool text, Order order>
void u64_to_hexadecimal(char* digits, const Word* words, std::uint64_t n) {
    const __m128i reverse = _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    const __m128i reverse_words = _mm_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8);
    std::uint64_t i = 0;
    for (; i + 2 <= n; i += 2, digits += 32) {
        const Digits32 d = order == Order::number ? hexadecimal_bytes(load(words + n - i - 2), reverse)
                                                  : hexadecimal_bytes(load(words + i), reverse_words);
        store(digits, hexadecimal_character<text>(d.first));
        store(digits + 16, hexadecimal_character<text>(d.second));
    }
    if (i < n) {
        const __m128i word = _mm_cvtsi64_si128(static_cast<long long>(words[word_index(order, i, n)]));
        store(digits, hexadecimal_character<text>(hexadecimal_bytes(word, reverse_words).first));
    }
}

template <bool text>
void u32_to_decimal(char* digits, const std::uint32_t* words, std::uint64_t n) {
    for (; n >= 4; n -= 4, digits += 32) {
        const Digits32 d = decimal_bytes(_mm_shuffle_epi32(load(words + n - 4), 0x1b));
        store(digits, decimal_character<text>(d.first));
        store(digits + 16, decimal_character<text>(d.second));
    }
    for (; n > 0; --n, digits += 8) {
        const Digits32 d = decimal_bytes(_mm_cvtsi32_si128(static_cast<int>(words[n - 1])));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(digits), decimal_character<text>(d.first));
    }
}

template <bool text>
void u32_to_hexadecimal(char* digits, const std::uint32_t* words, std::uint64_t n) {
    const __m128i reverse = _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    for (; n >= 4; n -= 4, digits += 32) {
        const Digits32 d = hexadecimal_bytes(load(words + n - 4), reverse);
        store(digits, hexadecimal_character<text>(d.first));
        store(digits + 16, hexadecimal_character<text>(d.second));
    }
    for (; n > 0; --n, digits += 8) {
        const __m128i word = _mm_slli_si128(_mm_cvtsi32_si128(static_cast<int>(words[n - 1])), 12);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(digits),
                         hexadecimal_character<text>(hexadecimal_bytes(word, reverse).first));
    }
}

template <Order order>
void decimal_to_u64(Word* words, const char* digits, std::uint64_t n) {
    const __m128i tens = _mm_set1_epi16(10 | 1 << 8);
    const __m128i hundreds = _mm_set1_epi32(100 | 1 << 16);
    const __m128i thousands = _mm_set1_epi32(10000 | 1 << 16);
    for (std::uint64_t i = 0; i < n; ++i, digits += 19) {
        const __m128i twos = _mm_maddubs_epi16(load(digits + 3), tens);
        const __m128i fours = _mm_madd_epi16(twos, hundreds);
        const __m128i eights = _mm_madd_epi16(_mm_packus_epi32(fours, fours), thousands);
        const Word both = static_cast<Word>(_mm_cvtsi128_si64(eights));
        const Word top = static_cast<Word>(digits[0] * 100 + digits[1] * 10 + digits[2]);
        words[word_index(order, i, n)] = top * ten_16 + (both & 0xffffffff) * ten_8 + (both >> 32);
    }
}

template <Order order>
void hexadecimal_to_u64(Word* words, const char* digits, std::uint64_t n) {
    const __m128i sixteens = _mm_set1_epi16(16 | 1 << 8);
    for (std::uint64_t i = 0; i < n; ++i, digits += 16) {
        const __m128i twos = _mm_maddubs_epi16(load(digits), sixteens);
        const __m128i bytes = _mm_packus_epi16(twos, twos);
        words[word_index(order, i, n)] = __builtin_bswap64(static_cast<Word>(_mm_cvtsi128_si64(bytes)));
    }
}

}  // namespace

const WordCodecs& sse4_word_codecs() {
    static constexpr WordCodecs codecs = {"SSE4.1",
                                          u64_to_decimal<false, Order::number>,
                                          u64_to_decimal<true, Order::number>,
                                          u64_to_hexadecimal<false, Order::number>,
                                          u64_to_hexadecimal<true, Order::number>,
                                          u32_to_decimal<false>,
                                          u32_to_decimal<true>,
                                          u32_to_hexadecimal<false>,
                                          u32_to_hexadecimal<true>,
                                          decimal_to_u64<Order::number>,
                                          hexadecimal_to_u64<Order::number>,
                                          u64_to_decimal<false, Order::file>,
                                          u64_to_decimal<true, Order::file>,
                                          u64_to_hexadecimal<false, Order::file>,
                                          u64_to_hexadecimal<true, Order::file>,
                                          decimal_to_u64<Order::file>,
                                          hexadecimal_to_u64<Order::file>};
    return codecs;
}

}  // namespace qmp::radix
