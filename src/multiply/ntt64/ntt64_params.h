// The length and the number of primes of a 64-bit number-theoretic transform.
//
// A convolution of multiplier * 2^exponent points modulo `primes` primes holds products of
// (primes - 1) * multiplier * 64 * 2^(exponent - 1) bits: 32 * (primes - 1) bits a point.
#pragma once

#include <cstdint>

#include "multiply/limit_tables.h"

namespace qmp::ntt64 {

extern const LimitTables limit_tables;

// The listed size for products of `bits` bits: up to hex A00000000 bits from the specialised list, up to
// hex 3800000000000000 from the standard one. LimitExceededException above that.
SizeParams ntt64_params(std::uint64_t bits);

}  // namespace qmp::ntt64
