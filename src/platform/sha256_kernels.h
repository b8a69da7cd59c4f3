// The inner function of SHA-256, in plain code and with the processor's own instructions.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qmp {

inline constexpr std::size_t sha256_block_size = 64;

// Takes `count` blocks of 64 bytes into the eight words of the state.
using Sha256Compression = void (*)(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count);

extern const Sha256Compression sha256_compression_plain;
// For processors with SHA, SSSE3 and SSE4.1.
extern const Sha256Compression sha256_compression_sha;

}  // namespace qmp
