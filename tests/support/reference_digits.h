// Reference digits of the constants (tests/data/constants.csv), and the digits of computed numbers.
#pragma once

#include <cstdint>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "numbers/big_float.h"

namespace kelvara_test {

struct ReferenceDigits {
    std::uint64_t hex_digits;  // how many follow from the decimal digits
    std::string hex_tail;      // the last 50 of them

    ReferenceDigits(const std::string& constant, std::uint64_t decimal_digits) {
        std::ifstream file(KELVARA_TEST_DATA "/constants.csv");
        for (std::string line; std::getline(file, line);) {
            std::istringstream fields(line);
            std::string field[8];
            for (std::string& text : field) std::getline(fields, text, ',');
            if (field[0] != constant || field[1] != std::to_string(decimal_digits)) continue;
            hex_digits = std::stoull(field[6]);
            hex_tail = field[7];
            return;
        }
        throw std::runtime_error("no reference digits of " + constant);
    }
};

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
