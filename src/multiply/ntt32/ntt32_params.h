// The length and the number of primes of a 32-bit number-theoretic transform.
//
// A convolution of multiplier * 2^exponent points modulo `primes` primes holds products of
// (primes - 1) * multiplier * 32 * 2^(exponent - 1) bits: 16 * (primes - 1) bits a point.
#pragma once

#include <cstdint>

#include "multiply/limit_tables.h"

namespace qmp::ntt32 {

extern const LimitTables limit_tables;

// The listed size for products of `bits` bits. LimitExceededException above hex 90000000 bits.
SizeParams ntt32_params(std::uint64_t bits);

}  // namespace qmp::ntt32
