// The capacity checks of the arithmetic.
#pragma once

#include <cstdint>

#include "errors/exception.h"

namespace qmp {

inline void require_capacity(const char* function, std::uint64_t present, std::uint64_t needed) {
    if (present < needed) throw BufferTooSmallException(function, present, needed);
}

}  // namespace qmp
