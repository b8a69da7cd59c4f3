#include "radix/digit_counting.h"

#include "multiply/instruction_levels.h"
#include "platform/processor_features.h"
#include "radix/digit_counting_levels.h"

namespace qmp::radix {
namespace {

// Four counters of each value: an increment need not wait for the one before it.
std::uint64_t count_bytes(std::uint64_t* counts, const char* values, std::uint64_t n, std::uint32_t radix) {
    std::uint64_t found[4][256] = {};
    const std::uint64_t counted = n / 4 * 4;
    for (std::uint64_t i = 0; i < counted; i += 4) {
        for (std::uint64_t k = 0; k < 4; ++k) ++found[k][static_cast<unsigned char>(values[i + k])];
    }
    for (std::uint32_t v = 0; v < radix; ++v)
        counts[v] += found[0][v] + found[1][v] + found[2][v] + found[3][v];
    return counted;
}

CountVectors count_vectors() {
    switch (current_level()) {
        case InstructionLevel::avx512:
            return count_vectors_avx512;
        case InstructionLevel::avx2:
            return count_vectors_avx2;
        case InstructionLevel::scalar:
            return count_bytes;
        default:
            // The level SSE2 has no more than its name says.
            return processor_features().ssse3 ? count_vectors_sse4 : count_bytes;
    }
}

}  // namespace

void count_digits(DigitCounts& counts, const char* values, std::uint64_t n, std::uint32_t radix) {
    const std::uint64_t counted = count_vectors()(counts.data(), values, n, radix);
    for (std::uint64_t i = counted; i < n; ++i) {
        const auto v = static_cast<unsigned char>(values[i]);
        if (v < radix) ++counts[v];
    }
}

}  // namespace qmp::radix
