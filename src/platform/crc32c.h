// The CRC-32C step of one 64-bit word, as the processor's own instruction computes it: nothing is inverted.
#pragma once

#include <cstdint>

namespace qmp {

// With the instruction where the processor has it.
std::uint32_t crc32c(std::uint32_t crc, std::uint64_t word);

// The same without it.
std::uint32_t crc32c_portable(std::uint32_t crc, std::uint64_t word);

namespace kernels {
std::uint32_t crc32c_sse42(std::uint32_t crc, std::uint64_t word);
}

}  // namespace qmp
