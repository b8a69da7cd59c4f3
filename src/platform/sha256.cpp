#include "platform/sha256.h"

#include <algorithm>
#include <bit>

#include "platform/processor_features.h"

namespace qmp {
namespace {

std::uint32_t load_big_endian(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
           bytes[3];
}

std::uint32_t small_sigma0(std::uint32_t x) {
    return std::rotr(x, 7) ^ std::rotr(x, 18) ^ (x >> 3);
}
std::uint32_t small_sigma1(std::uint32_t x) {
    return std::rotr(x, 17) ^ std::rotr(x, 19) ^ (x >> 10);
}
std::uint32_t big_sigma0(std::uint32_t x) {
    return std::rotr(x, 2) ^ std::rotr(x, 13) ^ std::rotr(x, 22);
}
std::uint32_t big_sigma1(std::uint32_t x) {
    return std::rotr(x, 6) ^ std::rotr(x, 11) ^ std::rotr(x, 25);
}

void compress_block(std::uint32_t* state, const std::uint8_t* block) {
    std::uint32_t schedule[64];
    for (int t = 0; t < 16; ++t) schedule[t] = load_big_endian(block + 4 * t);
    for (int t = 16; t < 64; ++t) {
        schedule[t] = small_sigma1(schedule[t - 2]) + schedule[t - 7] + small_sigma0(schedule[t - 15]) +
                      schedule[t - 16];
    }

    std::uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
    std::uint32_t e = state[4], f = state[5], g = state[6], h = state[7];
    for (int t = 0; t < 64; ++t) {
        const std::uint32_t choice = (e & f) ^ (~e & g);
        const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
        const std::uint32_t first = h + big_sigma1(e) + choice + sha256_round_constants[t] + schedule[t];
        const std::uint32_t second = big_sigma0(a) + majority;
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::uint32_t result[8] = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < 8; ++i) state[i] += result[i];
}

void compress_plain(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count) {
    for (; count > 0; --count, blocks += sha256_block_size) compress_block(state, blocks);
}

bool has_sha_instructions() {
    const ProcessorFeatures& features = processor_features();
    return features.sha && features.ssse3 && features.sse41;
}

}  // namespace

Sha256Compression sha256_compression() {
    static const Sha256Compression chosen =
        has_sha_instructions() ? sha256_compression_sha : sha256_compression_plain;
    return chosen;
}

const Sha256Compression sha256_compression_plain = compress_plain;

void Sha256::append(std::span<const std::uint8_t> bytes) {
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

Sha256Digest Sha256::finish() {
    const std::uint64_t bits = total_ * 8;
    const std::uint8_t one = 0x80, zero = 0;
    append({&one, 1});
    while (partial_size_ != block_size - 8) append({&zero, 1});
    std::uint8_t length[8];
    for (int i = 0; i < 8; ++i) length[i] = static_cast<std::uint8_t>(bits >> (56 - 8 * i));
    append(length);

    Sha256Digest digest;
    for (std::size_t i = 0; i < digest.size(); ++i) {
        digest[i] = static_cast<std::uint8_t>(state_[i / 4] >> (24 - 8 * (i % 4)));
    }
    return digest;
}

std::string to_hexadecimal(const Sha256Digest& digest) {
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

}  // namespace qmp
