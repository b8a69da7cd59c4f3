// The proof of a formula, in integers.
#pragma once

#include <cstdint>

#include "constants/log_formula.h"

namespace kelvara {

// Whether ln n is the sum of the formula's terms, exactly: the product of the ((x + 1) / (x - 1))^c must be
// n^2. False also for formulas that the generator never makes: an x below 2 or from 2^32 on, more than 32
// different primes, exponents beyond 64 bits. Any thread.
bool verify_log_formula(const LogFormula& formula, std::uint64_t n);

}  // namespace kelvara
