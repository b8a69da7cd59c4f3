// Small signed numbers added to a long one that is stored as bytes, lowest first.
#pragma once

#include <cstdint>
#include <cstring>

namespace qmp::vst {

// number[at .. end) += carry, carry -1, 0 or 1. Returns what goes out at the end.
inline std::int64_t add_carry(unsigned char* number, std::uint64_t end, std::uint64_t at,
                              std::int64_t carry) {
    for (; carry != 0 && at + 8 <= end; at += 8) {
        std::uint64_t word;
        std::memcpy(&word, number + at, 8);
        const std::uint64_t sum = word + static_cast<std::uint64_t>(carry);
        std::memcpy(number + at, &sum, 8);
        if (carry > 0 ? sum != 0 : word != 0) return 0;
    }
    for (; carry != 0 && at < end; ++at) {
        const std::int64_t sum = number[at] + carry;
        number[at] = static_cast<unsigned char>(sum);
        carry = sum >> 8;
    }
    return carry;
}

// number[at .. end) += value, four words in two's complement. Bytes beyond the end are cut off the sum; the
// carry that is returned is that of the part before the end (0 when the value itself reaches beyond it).
inline std::int64_t add_signed(unsigned char* number, std::uint64_t end, std::uint64_t at,
                               const std::uint64_t* value) {
    unsigned char bytes[32];
    std::memcpy(bytes, value, 32);
    const bool negative = value[3] >> 63;
    if (at + 32 > end) {
        unsigned carry = 0;
        std::uint64_t i = 0;
        for (; at + i < end; ++i) {
            carry += number[at + i] + 0u + bytes[i];
            number[at + i] = static_cast<unsigned char>(carry);
            carry >>= 8;
        }
        // Only a value that is all sign from here leaves a plain carry.
        const unsigned char sign = negative ? 0xff : 0;
        for (; i < 32; ++i) {
            if (bytes[i] != sign) return 0;
        }
        return static_cast<std::int64_t>(carry) - (negative ? 1 : 0);
    }
    unsigned char carry = 0;
    for (std::uint64_t i = 0; i < 4; ++i) {
        std::uint64_t word;
        std::memcpy(&word, number + at + 8 * i, 8);
        std::uint64_t sum = word + value[i];
        const unsigned char first = sum < word;
        sum += carry;
        carry = static_cast<unsigned char>(first | (sum < carry));
        std::memcpy(number + at + 8 * i, &sum, 8);
    }
    return add_carry(number, end, at + 32, std::int64_t{carry} - (negative ? 1 : 0));
}

// Four words in two's complement, shifted right by whole bytes (the floor).
inline void shift_right_bytes(std::uint64_t (&shifted)[4], const std::uint64_t* value, std::uint64_t bytes) {
    unsigned char extended[64];
    std::memcpy(extended, value, 32);
    std::memset(extended + 32, value[3] >> 63 ? 0xff : 0, 32);
    std::memcpy(shifted, extended + (bytes < 32 ? bytes : 32), 32);
}

// value += word, the word signed.
inline void add_word(std::uint64_t (&value)[4], std::uint64_t word) {
    const std::uint64_t sign = word >> 63 ? ~std::uint64_t{0} : 0;
    std::uint64_t carry = 0;
    for (int i = 0; i < 4; ++i) {
        const std::uint64_t addend = i == 0 ? word : sign;
        const std::uint64_t sum = value[i] + addend;
        const std::uint64_t total = sum + carry;
        carry = (sum < addend ? 1u : 0u) | (total < sum ? 1u : 0u);
        value[i] = total;
    }
}

inline void negate(std::uint64_t (&value)[4]) {
    for (auto& word : value) word = ~word;
    add_word(value, 1);
}

}  // namespace qmp::vst
