// The algorithm "N64": products modulo several primes below 2^63, up to 2^56 words and more.
#pragma once

#include "multiply/algorithm.h"

namespace qmp::ntt64 {

const Algorithm32& algorithm32();
const Algorithm64& algorithm64();

}  // namespace qmp::ntt64
