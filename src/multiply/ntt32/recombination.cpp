#include "multiply/ntt32/recombination.h"

#include <array>

#include "multiply/ntt32/modular.h"

namespace qmp::ntt32 {
namespace {

constexpr std::uint64_t digit_mask = (std::uint64_t{1} << digit_bits) - 1;

using Digits = std::array<std::uint32_t, most_digits + 1>;

Digits times(const Digits& x, std::uint64_t factor) {
    Digits result{};
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < result.size(); ++i) {
        carry += x[i] * factor;
        result[i] = static_cast<std::uint32_t>(carry & digit_mask);
        carry >>= digit_bits;
    }
    return result;
}

std::uint32_t modulo(const Digits& x, std::uint32_t p) {
    std::uint64_t remainder = 0;
    for (std::size_t i = x.size(); i-- > 0;) remainder = (remainder << digit_bits | x[i]) % p;
    return static_cast<std::uint32_t>(remainder);
}

// x / 2^bits, which fits.
std::uint64_t shifted_right(const Digits& x, int bits) {
    const auto first = static_cast<std::size_t>(bits / digit_bits);
    std::uint64_t result = x[first] >> bits % digit_bits;
    for (std::size_t i = first + 1; i < x.size(); ++i) {
        const int shift = digit_bits * static_cast<int>(i) - bits;
        if (x[i] != 0) result |= std::uint64_t{x[i]} << shift;
    }
    return result;
}

struct BuiltRecombination : Recombination {
    BuiltRecombination(std::size_t set, std::size_t primes) : Recombination{} {
        const auto& prime = prime_table[set];
        Digits product{1};
        for (std::size_t i = 0; i < primes; ++i) product = times(product, prime[i].value);
        for (std::size_t i = 0; i < primes; ++i) {
            const std::uint32_t p = prime[i].value;
            Digits cofactor{1};
            for (std::size_t j = 0; j < primes; ++j) {
                if (j != i) cofactor = times(cofactor, prime[j].value);
            }
            for (std::size_t d = 0; d < most_digits; ++d) cofactors[i][d] = cofactor[d];
            inverse_cofactors[i] = inverse_modulo(modulo(cofactor, p), p);
            reciprocals[i] = static_cast<std::uint32_t>((std::uint64_t{1} << 60) / p);
            const Modulus modulus = make_modulus(p);
            for (std::size_t c = 0; c < most_chunks; ++c) {
                chunk_weights[i][c] = make_factor(power_modulo(2, 32 * c, p), modulus);
            }
        }
        // 2^(28 digits) - P: every digit subtracted from the largest one, and 1 added.
        std::uint64_t carry = 1;
        for (std::size_t d = 0; d < most_digits; ++d) {
            carry += digit_mask - product[d];
            complement[d] = static_cast<std::uint32_t>(carry & digit_mask);
            carry >>= digit_bits;
        }
        const std::uint64_t ratio = shifted_right(product, 32 * (static_cast<int>(primes) - 1));
        most_points = ratio - (ratio >> 20) - 1;
    }
};

template <std::size_t Set>
const Recombination& built(std::uint32_t primes) {
    static const BuiltRecombination constants[] = {{Set, 4}, {Set, 5}, {Set, 6},
                                                   {Set, 7}, {Set, 8}, {Set, 9}};
    return constants[primes - fewest_primes];
}

}  // namespace

const Recombination& recombination(std::size_t set, std::uint32_t primes) {
    static_assert(set_count == 4);
    switch (set) {
        case 0:
            return built<0>(primes);
        case 1:
            return built<1>(primes);
        case 2:
            return built<2>(primes);
        default:
            return built<3>(primes);
    }
}

}  // namespace qmp::ntt32
