#include "platform/sha256.h"

#include <algorithm>
#include <bit>

namespace qmp {
namespace {

// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::uint32_t round_constants[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

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

}  // namespace

void Sha256::absorb(const std::uint8_t* block) {
    std::uint32_t schedule[64];
    for (int t = 0; t < 16; ++t) schedule[t] = load_big_endian(block + 4 * t);
    for (int t = 16; t < 64; ++t) {
        schedule[t] = small_sigma1(schedule[t - 2]) + schedule[t - 7] + small_sigma0(schedule[t - 15]) +
                      schedule[t - 16];
    }

    auto [a, b, c, d, e, f, g, h] = state_;
    for (int t = 0; t < 64; ++t) {
        const std::uint32_t choice = (e & f) ^ (~e & g);
        const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
        const std::uint32_t first = h + big_sigma1(e) + choice + round_constants[t] + schedule[t];
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
    for (std::size_t i = 0; i < 8; ++i) state_[i] += result[i];
}

void Sha256::append(std::span<const std::uint8_t> bytes) {
    total_ += bytes.size();
    if (partial_size_ > 0) {
        const std::size_t count = std::min(bytes.size(), block_size - partial_size_);
        std::copy_n(bytes.begin(), count, partial_.begin() + static_cast<std::ptrdiff_t>(partial_size_));
        partial_size_ += count;
        bytes = bytes.subspan(count);
        if (partial_size_ < block_size) return;
        absorb(partial_.data());
        partial_size_ = 0;
    }
    for (; bytes.size() >= block_size; bytes = bytes.subspan(block_size)) absorb(bytes.data());
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
