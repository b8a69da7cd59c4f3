// The SHA-256 digest (FIPS 180-4).
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "platform/sha256_kernels.h"

namespace qmp {

using Sha256Digest = std::array<std::uint8_t, 32>;

class Sha256 {
  public:
    // The fastest that the processor has, unless a test asks for another.
    explicit Sha256(Sha256Compression compression = sha256_compression()) : compression_(compression) {}

    // Any number of pieces; the digest is that of all of them in a row.
    void append(std::span<const std::uint8_t> bytes);
    // The digest of what was appended. Nothing can be appended afterwards.
    Sha256Digest finish();

  private:
    static constexpr std::size_t block_size = sha256_block_size;

    Sha256Compression compression_;
    std::array<std::uint32_t, 8> state_ = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                           0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<std::uint8_t, block_size> partial_;
    std::size_t partial_size_ = 0;
    std::uint64_t total_ = 0;  // bytes
};

// 64 lower-case hexadecimal digits.
std::string to_hexadecimal(const Sha256Digest& digest);

}  // namespace qmp
