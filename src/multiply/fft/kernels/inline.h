// Kernels are written as small functions that must end up in one loop body.
#pragma once

#define FFT_INLINE inline __attribute__((always_inline))
#define FFT_INLINE_LAMBDA __attribute__((always_inline))
