#include "platform/crc32c.h"

#include <array>

#include "platform/processor_features.h"

namespace qmp {
namespace {

// Castagnoli's polynomial with its bits reversed, as the lowest bit is shifted out first.
constexpr std::uint32_t polynomial = 0x82f63b78;

constexpr std::array<std::uint32_t, 256> steps_of_bytes() {
    std::array<std::uint32_t, 256> steps{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? polynomial : 0);
        steps[byte] = crc;
    }
    return steps;
}

constexpr std::array<std::uint32_t, 256> steps = steps_of_bytes();

}  // namespace

std::uint32_t crc32c_portable(std::uint32_t crc, std::uint64_t word) {
    for (int byte = 0; byte < 8; ++byte) {
        crc = crc >> 8 ^ steps[(crc ^ word) & 0xff];
        word >>= 8;
    }
    return crc;
}

std::uint32_t crc32c(std::uint32_t crc, std::uint64_t word) {
    static const auto chosen = processor_features().sse42 ? kernels::crc32c_sse42 : crc32c_portable;
    return chosen(crc, word);
}

}  // namespace qmp
