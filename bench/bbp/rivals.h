// Terms in 64-bit integer arithmetic, one after the other.
#pragma once

#include <cstdint>
#include <span>

namespace bench {

// Adds the digits of 48 bits of frac(2^exponent / modulus); an odd modulus below 2^49.
using RivalTerm = void (*)(std::uint64_t exponent, std::uint64_t modulus, std::uint64_t* digits,
                           std::uint64_t count);

struct Rival {
    const char* name;
    RivalTerm term;
};

// The first one is the plain one: left-to-right exponentiation, residues by division of 128 bits by 64. The
// second squares by Montgomery's reduction.
std::span<const Rival> rivals();

}  // namespace bench
