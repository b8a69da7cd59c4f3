// The algorithm "HNT": products by transforms in rings modulo 2^N + 1, up to 137434759168 64-bit words.
#pragma once

#include "multiply/algorithm.h"

namespace qmp::hybrid_ntt {

const Algorithm32& algorithm32();
const Algorithm64& algorithm64();

}  // namespace qmp::hybrid_ntt
