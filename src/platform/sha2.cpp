#include "platform/sha2.h"

#include <bit>

#include "platform/processor_features.h"
#include "platform/sha2_constants.h"

namespace qmp {
namespace {

// What differs between the two word sizes: the number of rounds, and each mixing function's rotations (of
// the two small ones, the last is a shift).
template <typename Word>
struct Shape;
template <>
struct Shape<std::uint32_t> {
    static constexpr int rounds = 64;
    static constexpr int big0[3] = {2, 13, 22}, big1[3] = {6, 11, 25};
    static constexpr int small0[3] = {7, 18, 3}, small1[3] = {17, 19, 10};
};
template <>
struct Shape<std::uint64_t> {
    static constexpr int rounds = 80;
    static constexpr int big0[3] = {28, 34, 39}, big1[3] = {14, 18, 41};
    static constexpr int small0[3] = {1, 8, 7}, small1[3] = {19, 61, 6};
};

template <typename Word>
Word load_big_endian(const std::uint8_t* bytes) {
    Word word = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i) word = static_cast<Word>(word << 8 | bytes[i]);
    return word;
}

template <typename Word>
Word big_sigma(const int (&turn)[3], Word x) {
    return std::rotr(x, turn[0]) ^ std::rotr(x, turn[1]) ^ std::rotr(x, turn[2]);
}

template <typename Word>
Word small_sigma(const int (&turn)[3], Word x) {
    return std::rotr(x, turn[0]) ^ std::rotr(x, turn[1]) ^ (x >> turn[2]);
}

template <typename Word>
void compress_block(Word* state, const std::uint8_t* block) {
    using S = Shape<Word>;
    Word schedule[S::rounds];
    for (int t = 0; t < 16; ++t) {
        schedule[t] = load_big_endian<Word>(block + sizeof(Word) * static_cast<std::size_t>(t));
    }
    for (int t = 16; t < S::rounds; ++t) {
        schedule[t] = small_sigma(S::small1, schedule[t - 2]) + schedule[t - 7] +
                      small_sigma(S::small0, schedule[t - 15]) + schedule[t - 16];
    }

    Word a = state[0], b = state[1], c = state[2], d = state[3];
    Word e = state[4], f = state[5], g = state[6], h = state[7];
    for (int t = 0; t < S::rounds; ++t) {
        const Word choice = (e & f) ^ (~e & g);
        const Word majority = (a & b) ^ (a & c) ^ (b & c);
        const Word constant = static_cast<Word>(sha2_round_constants[t] >> (64 - 8 * sizeof(Word)));
        const Word first = h + big_sigma(S::big1, e) + choice + constant + schedule[t];
        const Word second = big_sigma(S::big0, a) + majority;
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const Word result[8] = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < 8; ++i) state[i] += result[i];
}

template <typename Word>
void compress_plain(Word* state, const std::uint8_t* blocks, std::size_t count) {
    for (; count > 0; --count, blocks += Sha2<Word>::block_size) compress_block(state, blocks);
}

bool has_sha_instructions() {
    const ProcessorFeatures& features = processor_features();
    return features.sha && features.ssse3 && features.sse41;
}

}  // namespace

const Sha256Compression sha256_compression_plain = compress_plain<std::uint32_t>;

template <>
Sha2Compression<std::uint32_t> sha2_compression<std::uint32_t>() {
    static const Sha256Compression chosen =
        has_sha_instructions() ? sha256_compression_sha : sha256_compression_plain;
    return chosen;
}

template <>
Sha2Compression<std::uint64_t> sha2_compression<std::uint64_t>() {
    return compress_plain<std::uint64_t>;
}

template <typename Word>
void Sha2<Word>::append(std::span<const std::uint8_t> bytes) {
    total_ += bytes.size();
    if (partial_size_ > 0) {
        const std::size_t count = std::min(bytes.size(), block_size - partial_size_);
        std::copy_n(bytes.begin(), count, partial_.begin() + static_cast<std::ptrdiff_t>(partial_size_));
        partial_size_ += count;
        bytes = bytes.subspan(count);
        if (partial_size_ < block_size) return;
        compression_(state_.data(), partial_.data(), 1);
        partial_size_ = 0;
    }
    const std::size_t blocks = bytes.size() / block_size;
    compression_(state_.data(), bytes.data(), blocks);
    bytes = bytes.subspan(blocks * block_size);
    std::copy(bytes.begin(), bytes.end(), partial_.begin());
    partial_size_ = bytes.size();
}

template <typename Word>
typename Sha2<Word>::Digest Sha2<Word>::finish() {
    // The message's length in bits takes two words; its upper half on 64-bit words is always 0.
    constexpr std::size_t length_size = 2 * sizeof(Word);
    const std::uint64_t bits = total_ * 8;
    const std::uint8_t one = 0x80, zero = 0;
    append({&one, 1});
    while (partial_size_ != block_size - length_size) append({&zero, 1});
    std::array<std::uint8_t, length_size> length{};
    for (std::size_t i = 0; i < 8; ++i) {
        length[length_size - 1 - i] = static_cast<std::uint8_t>(bits >> (8 * i));
    }
    append(length);

    Digest digest;
    for (std::size_t i = 0; i < digest.size(); ++i) {
        const std::size_t shift = 8 * (sizeof(Word) - 1 - i % sizeof(Word));
        digest[i] = static_cast<std::uint8_t>(state_[i / sizeof(Word)] >> shift);
    }
    return digest;
}

template class Sha2<std::uint32_t>;
template class Sha2<std::uint64_t>;

std::string to_hexadecimal(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

}  // namespace qmp
