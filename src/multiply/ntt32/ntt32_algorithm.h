// The algorithm "N32": products by 32-bit number-theoretic transforms, up to 37748736 64-bit words.
#pragma once

#include "multiply/algorithm.h"

namespace qmp::ntt32 {

const Algorithm32& algorithm32();
const Algorithm64& algorithm64();

}  // namespace qmp::ntt32
