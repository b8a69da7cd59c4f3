#include "rivals.h"

#include <bit>

namespace bench {
namespace {

__extension__ using Wide = unsigned __int128;

void add_digits(std::uint64_t rest, std::uint64_t modulus, std::uint64_t* digits, std::uint64_t count) {
    for (std::uint64_t i = 0; i < count; ++i) {
        const Wide scaled = Wide{rest} << 48;
        const auto digit = static_cast<std::uint64_t>(scaled / modulus);
        digits[i] += digit;
        rest = static_cast<std::uint64_t>(scaled - Wide{digit} * modulus);
    }
}

void plain_term(std::uint64_t exponent, std::uint64_t modulus, std::uint64_t* digits, std::uint64_t count) {
    std::uint64_t power = 2 % modulus;
    for (int bit = static_cast<int>(std::bit_width(exponent)) - 2; bit >= 0; --bit) {
        power = static_cast<std::uint64_t>(Wide{power} * power % modulus);
        if ((exponent >> bit) & 1) {
            power *= 2;
            if (power >= modulus) power -= modulus;
        }
    }
    add_digits(power, modulus, digits, count);
}

void montgomery_term(std::uint64_t exponent, std::uint64_t modulus, std::uint64_t* digits,
                     std::uint64_t count) {
    std::uint64_t inverse = modulus;  // modulo 2^64; right to 3 bits
    for (int bits = 3; bits < 64; bits *= 2) inverse *= 2 - modulus * inverse;
    const auto reduce = [=](Wide x) {
        const auto factor = static_cast<std::uint64_t>(x) * inverse;
        const auto taken = static_cast<std::uint64_t>(Wide{factor} * modulus >> 64);
        const auto high = static_cast<std::uint64_t>(x >> 64);
        return high >= taken ? high - taken : high + modulus - taken;
    };
    // 2^64 stands for 1.
    std::uint64_t power = (0 - modulus) % modulus;
    for (int bit = static_cast<int>(std::bit_width(exponent)) - 1; bit >= 0; --bit) {
        power = reduce(Wide{power} * power);
        if ((exponent >> bit) & 1) {
            power *= 2;
            if (power >= modulus) power -= modulus;
        }
    }
    add_digits(reduce(power), modulus, digits, count);
}

constexpr Rival all[] = {{"plain integers", plain_term}, {"Montgomery's integers", montgomery_term}};

}  // namespace

std::span<const Rival> rivals() {
    return all;
}

}  // namespace bench
