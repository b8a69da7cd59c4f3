// The algorithm "FFT": products by floating-point convolutions, up to 1572864 64-bit words.
#pragma once

#include "multiply/algorithm.h"

namespace qmp::fft {

const Algorithm32& algorithm32();
const Algorithm64& algorithm64();

}  // namespace qmp::fft
