#include "constants/bbp/fraction.h"

#include <algorithm>

#include "errors/exception.h"

namespace kelvara::bbp {
namespace {

constexpr std::uint64_t chunk_mask = (std::uint64_t{1} << chunk_bits) - 1;

}  // namespace

ChunkFraction::ChunkFraction(std::uint64_t words)
    : chunks_(std::max<std::uint64_t>((32 * words + chunk_bits - 1) / chunk_bits, 2)) {}

void ChunkFraction::take(std::vector<std::uint64_t>& sums, std::uint64_t lanes) {
    std::int64_t carry = 0;
    for (std::uint64_t i = chunks_.size(); i-- > 0;) {
        std::uint64_t sum = 0;
        for (std::uint64_t lane = 0; lane < lanes; ++lane) {
            sum += sums[i * lanes + lane];
            sums[i * lanes + lane] = 0;
        }
        const std::int64_t value =
            static_cast<std::int64_t>(sum) + static_cast<std::int64_t>(chunks_[i]) + carry;
        chunks_[i] = static_cast<std::uint64_t>(value) & chunk_mask;
        carry = value >> chunk_bits;
    }
}

void ChunkFraction::add(const ChunkFraction& other) {
    std::uint64_t carry = 0;
    for (std::uint64_t i = chunks_.size(); i-- > 0;) {
        const std::uint64_t value = chunks_[i] + other.chunks_[i] + carry;
        chunks_[i] = value & chunk_mask;
        carry = value >> chunk_bits;
    }
}

Fraction::Fraction(std::uint64_t words) {
    if (words < 2) {
        throw qmp::InvalidParametersException("bbp::Fraction::Fraction()", "Length must be at least 2.");
    }
    words_.resize(words);
}

Fraction::Fraction(const ChunkFraction& sum, std::uint64_t words) : Fraction(words) {
    for (std::uint64_t i = 0; i < words; ++i) {
        // Words begin at three places of the chunks: 48 bits are a word and a half.
        const std::uint64_t chunk = 2 * i / 3;
        const std::uint64_t next = chunk + 1 < sum.chunks() ? sum.chunk(chunk + 1) : 0;
        switch (i % 3) {
            case 0:
                words_[i] = static_cast<std::uint32_t>(sum.chunk(chunk) >> 16);
                break;
            case 1:
                words_[i] = static_cast<std::uint32_t>((sum.chunk(chunk) << 16) | (next >> 32));
                break;
            default:
                words_[i] = static_cast<std::uint32_t>(sum.chunk(chunk));
        }
    }
}

void Fraction::check_length(const Fraction& other) const {
    if (size() != other.size()) {
        throw qmp::InvalidParametersException("bbp::Fraction", "Lengths do not match.");
    }
}

void Fraction::add(const Fraction& other) {
    check_length(other);
    std::uint64_t carry = 0;
    for (std::uint64_t i = size(); i-- > 0;) {
        carry += std::uint64_t{words_[i]} + other.words_[i];
        words_[i] = static_cast<std::uint32_t>(carry);
        carry >>= 32;
    }
}

void Fraction::subtract(const Fraction& other) {
    check_length(other);
    std::uint64_t borrow = 0;
    for (std::uint64_t i = size(); i-- > 0;) {
        const std::uint64_t value = std::uint64_t{words_[i]} - other.words_[i] - borrow;
        words_[i] = static_cast<std::uint32_t>(value);
        borrow = value >> 63;
    }
}

std::string Fraction::hexadecimal_digits() const {
    std::string digits;
    digits.reserve(8 * words_.size());
    for (const std::uint32_t word : words_) {
        for (int shift = 28; shift >= 0; shift -= 4) digits += "0123456789ABCDEF"[(word >> shift) & 15];
    }
    return digits;
}

}  // namespace kelvara::bbp
