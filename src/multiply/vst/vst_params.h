// The length and the number of primes of a vector transform.
//
// A convolution of multiplier * 2^exponent points modulo `primes` primes holds products of
// (primes - 1) * multiplier * 48 * 2^(exponent - 1) bits: 24 * (primes - 1) bits a point.
#pragma once

#include <cstdint>

#include "multiply/limit_tables.h"

namespace qmp::vst {

extern const LimitTables limit_tables;

// The listed size for products of `bits` bits: up to hex A80000000 bits from the specialised list, up to
// hex 12C0000000000 from the standard one. LimitExceededException above that.
SizeParams vst_params(std::uint64_t bits);

}  // namespace qmp::vst
