// The digests SHA-256 and SHA-512 (FIPS 180-4), and digests with a key made of either (HMAC, RFC 2104).
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/sha256_kernels.h"

namespace qmp {

// Takes `count` blocks into the eight words of the state.
template <typename Word>
using Sha2Compression = void (*)(Word* state, const std::uint8_t* blocks, std::size_t count);
// The fastest that the processor has.
template <typename Word>
Sha2Compression<Word> sha2_compression();
template <>
Sha2Compression<std::uint32_t> sha2_compression<std::uint32_t>();
template <>
Sha2Compression<std::uint64_t> sha2_compression<std::uint64_t>();

// Both are one construction on words of 32 or 64 bits.
template <typename Word>
class Sha2 {
  public:
    using Digest = std::array<std::uint8_t, 8 * sizeof(Word)>;
    static constexpr std::size_t block_size = 16 * sizeof(Word);

    explicit Sha2(Sha2Compression<Word> compression = sha2_compression<Word>()) : compression_(compression) {}

    // Any number of pieces; the digest is that of all of them in a row, of less than 2^61 bytes.
    void append(std::span<const std::uint8_t> bytes);
    // The digest of what was appended. Nothing can be appended afterwards.
    Digest finish();

  private:
    Sha2Compression<Word> compression_;
    std::array<Word, 8> state_ = first_state();
    std::array<std::uint8_t, block_size> partial_;
    std::size_t partial_size_ = 0;
    std::uint64_t total_ = 0;  // bytes

    // The first bits of the fractional parts of the square roots of the first 8 primes.
    static constexpr std::array<Word, 8> first_state() {
        constexpr std::uint64_t roots[8] = {0x6a09e667f3bcc908, 0xbb67ae8584caa73b, 0x3c6ef372fe94f82b,
                                            0xa54ff53a5f1d36f1, 0x510e527fade682d1, 0x9b05688c2b3e6c1f,
                                            0x1f83d9abfb41bd6b, 0x5be0cd19137e2179};
        std::array<Word, 8> state{};
        for (int i = 0; i < 8; ++i) state[i] = static_cast<Word>(roots[i] >> (64 - 8 * sizeof(Word)));
        return state;
    }
};

extern template class Sha2<std::uint32_t>;
extern template class Sha2<std::uint64_t>;

using Sha256 = Sha2<std::uint32_t>;
using Sha512 = Sha2<std::uint64_t>;
using Sha256Digest = Sha256::Digest;
using Sha512Digest = Sha512::Digest;

// The digest of a message that only who has the key can form. Keys are of any length; those longer than a
// block count as their digest.
template <typename Hash>
class KeyedDigest {
  public:
    explicit KeyedDigest(std::span<const std::uint8_t> key) {
        std::array<std::uint8_t, Hash::block_size> block{};
        if (key.size() > block.size()) {
            Hash of_key;
            of_key.append(key);
            std::ranges::copy(of_key.finish(), block.begin());
        } else {
            std::ranges::copy(key, block.begin());
        }
        for (std::uint8_t& byte : block) byte ^= 0x36;
        inner_.append(block);
        for (std::uint8_t& byte : block) byte ^= 0x36 ^ 0x5c;
        outer_.append(block);
    }

    void append(std::span<const std::uint8_t> bytes) { inner_.append(bytes); }
    typename Hash::Digest finish() {
        outer_.append(inner_.finish());
        return outer_.finish();
    }

  private:
    Hash inner_;
    Hash outer_;
};

inline std::span<const std::uint8_t> bytes_of(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Two lower-case hexadecimal digits a byte.
std::string to_hexadecimal(std::span<const std::uint8_t> bytes);

}  // namespace qmp
