#include <nmmintrin.h>

#include "platform/crc32c.h"

namespace qmp::kernels {

std::uint32_t crc32c_sse42(std::uint32_t crc, std::uint64_t word) {
    return static_cast<std::uint32_t>(_mm_crc32_u64(crc, word));
}

}  // namespace qmp::kernels
