// The word codecs without vector instructions: eight digits at a time in the bytes of one word.
#include <cstring>

#include "radix/word_codecs.h"

namespace qmp::radix {
namespace {

constexpr Word ten_8 = 100000000;
constexpr Word ten_16 = ten_8 * ten_8;
constexpr Word every_byte = 0x0101010101010101;

void store(char* digits, Word bytes) {
    std::memcpy(digits, &bytes, sizeof(bytes));
}
Word load(const char* digits) {
    Word bytes;
    std::memcpy(&bytes, digits, sizeof(bytes));
    return bytes;
}

// The eight decimal digits of v < 10^8 as bytes, the most significant lowest. Each step splits every
// lane into quotient (low half) and remainder (high half); the quotients are products with rounded-up
// reciprocals, exact over the lanes' ranges: x / 100 for x < 10^4, x / 10 for x < 100.
Word decimal_bytes(Word v) {
    const Word fours = v / 10000 + ((v % 10000) << 32);
    const Word hundreds = ((fours * 10486) >> 20) & 0x0000007f0000007f;
    const Word twos = hundreds + ((fours - hundreds * 100) << 16);
    const Word tens = ((twos * 103) >> 10) & 0x000f000f000f000f;
    return tens + ((twos - tens * 10) << 8);
}

// The inverse: pairs, fours, eights.
Word decimal_value(Word bytes) {
    const Word twos = ((bytes * 10) + (bytes >> 8)) & 0x00ff00ff00ff00ff;
    const Word fours = ((twos * 100) + (twos >> 16)) & 0x0000ffff0000ffff;
    return ((fours * 10000) + (fours >> 32)) & 0xffffffff;
}

// The eight nibbles of v as bytes, the most significant lowest.
Word hexadecimal_bytes(std::uint32_t v) {
    Word x = v;
    x = (x >> 16) | ((x & 0xffff) << 32);
    x = ((x >> 8) & 0x000000ff000000ff) | ((x & 0x000000ff000000ff) << 16);
    return ((x >> 4) & 0x000f000f000f000f) | ((x & 0x000f000f000f000f) << 8);
}

Word decimal_text(Word bytes) {
    return bytes + every_byte * '0';
}
Word hexadecimal_text(Word bytes) {
    const Word letters = ((bytes + every_byte * 6) >> 4) & every_byte;
    return bytes + every_byte * '0' + letters * ('a' - '0' - 10);
}

template <bool text, Order order>
void u64_to_decimal(char* digits, const Word* words, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i, digits += 19) {
        const Word word = words[word_index(order, i, n)];
        const Word top = word / ten_16;
        const Word rest = word % ten_16;
        // The three leading digits: the low three of eight.
        Word head = decimal_bytes(top) >> 40;
        Word middle = decimal_bytes(rest / ten_8);
        Word tail = decimal_bytes(rest % ten_8);
        if constexpr (text) {
            head = decimal_text(head);
            middle = decimal_text(middle);
            tail = decimal_text(tail);
        }
        std::memcpy(digits, &head, 3);
        store(digits + 3, middle);
        store(digits + 11, tail);
    }
}

template <bool text, Order order>
void u64_to_hexadecimal(char* digits, const Word* words, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i, digits += 16) {
        const Word word = words[word_index(order, i, n)];
        const Word high = hexadecimal_bytes(static_cast<std::uint32_t>(word >> 32));
        const Word low = hexadecimal_bytes(static_cast<std::uint32_t>(word));
        store(digits, text ? hexadecimal_text(high) : high);
        store(digits + 8, text ? hexadecimal_text(low) : low);
    }
}

template <bool text>
void u32_to_decimal(char* digits, const std::uint32_t* words, std::uint64_t n) {
    for (std::uint64_t i = n; i-- > 0; digits += 8) {
        const Word bytes = decimal_bytes(words[i]);
        store(digits, text ? decimal_text(bytes) : bytes);
    }
}

template <bool text>
void u32_to_hexadecimal(char* digits, const std::uint32_t* words, std::uint64_t n) {
    for (std::uint64_t i = n; i-- > 0; digits += 8) {
        const Word bytes = hexadecimal_bytes(words[i]);
        store(digits, text ? hexadecimal_text(bytes) : bytes);
    }
}

// The inverse of hexadecimal_bytes(): pairs, fours, eights.
Word hexadecimal_value(Word bytes) {
    const Word twos = ((bytes << 4) | (bytes >> 8)) & 0x00ff00ff00ff00ff;
    const Word fours = ((twos << 8) | (twos >> 16)) & 0x0000ffff0000ffff;
    return ((fours << 16) | (fours >> 32)) & 0xffffffff;
}

template <Order order>
void decimal_to_u64(Word* words, const char* digits, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i, digits += 19) {
        const Word top = static_cast<Word>(digits[0] * 100 + digits[1] * 10 + digits[2]);
        words[word_index(order, i, n)] =
            top * ten_16 + decimal_value(load(digits + 3)) * ten_8 + decimal_value(load(digits + 11));
    }
}

template <Order order>
void hexadecimal_to_u64(Word* words, const char* digits, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i, digits += 16) {
        words[word_index(order, i, n)] =
            hexadecimal_value(load(digits)) << 32 | hexadecimal_value(load(digits + 8));
    }
}

}  // namespace

const WordCodecs& scalar_word_codecs() {
    static constexpr WordCodecs codecs = {"scalar",
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
