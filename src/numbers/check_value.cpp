#include "numbers/check_value.h"

#include <bit>

namespace qmp {

std::uint64_t pow_mod(std::uint64_t base, std::uint64_t exponent) {
    std::uint64_t power = 1;
    for (int bit = std::bit_width(exponent); bit-- > 0;) {
        power = check_mul(power, power);
        if ((exponent >> bit) & 1) power = check_mul(power, base);
    }
    return power;
}

std::uint64_t check_word_weight(std::int64_t position) {
    constexpr std::uint64_t radix = 8;                               // 2^64
    constexpr std::uint64_t inverse_radix = std::uint64_t{1} << 58;  // 8 * 2^58 = 2^61 = 1
    if (position >= 0) return pow_mod(radix, static_cast<std::uint64_t>(position));
    return pow_mod(inverse_radix, std::uint64_t{0} - static_cast<std::uint64_t>(position));
}

}  // namespace qmp
