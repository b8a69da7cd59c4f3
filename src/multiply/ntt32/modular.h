// Arithmetic modulo primes below 2^31, for the constants of the transforms.
#pragma once

#include <cstdint>

#include "multiply/ntt32/kernels/kernels.h"

namespace qmp::ntt32 {

inline std::uint32_t multiply_modulo(std::uint64_t a, std::uint64_t b, std::uint32_t p) {
    return static_cast<std::uint32_t>(a % p * (b % p) % p);
}

inline std::uint32_t power_modulo(std::uint64_t base, std::uint64_t exponent, std::uint32_t p) {
    std::uint32_t result = 1;
    for (std::uint64_t square = base % p; exponent != 0; exponent >>= 1) {
        if (exponent & 1) result = multiply_modulo(result, square, p);
        square = multiply_modulo(square, square, p);
    }
    return result;
}

inline std::uint32_t inverse_modulo(std::uint64_t a, std::uint32_t p) {
    return power_modulo(a, p - 2, p);
}

inline Modulus make_modulus(std::uint32_t p) {
    // x p = 1 modulo 2^3 for x = p; each step doubles the bits.
    std::uint32_t x = p;
    for (int i = 0; i < 4; ++i) x *= 2 - p * x;
    return {p, x};
}

// The factor that multiplies by c.
inline Factor make_factor(std::uint64_t c, const Modulus& modulus) {
    const std::uint32_t value = multiply_modulo(c, std::uint64_t{1} << 32, modulus.prime);
    return {value, value * modulus.inverse};
}

}  // namespace qmp::ntt32
