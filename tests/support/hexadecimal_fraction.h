// The hexadecimal digits of computed numbers.
#pragma once

#include <cstdint>
#include <string>

#include "numbers/big_float.h"

namespace kelvara_test {

// The hexadecimal digits (first, end] behind the point, counted from 1.
inline std::string hex_fraction(qmp::BigFloatView x, std::uint64_t first, std::uint64_t end) {
    std::string text;
    for (std::uint64_t i = first; i < end; i++) {
        const std::int64_t position = -1 - static_cast<std::int64_t>(i / 16) - x.exp;
        const bool inside = position >= 0 && position < static_cast<std::int64_t>(x.L);
        const qmp::Word word = inside ? x.T[position] : 0;
        text += "0123456789abcdef"[word >> (60 - 4 * (i % 16)) & 15];
    }
    return text;
}

inline std::string hex_tail(qmp::BigFloatView x, std::uint64_t digits) {
    return hex_fraction(x, digits - 50, digits);
}

}  // namespace kelvara_test
