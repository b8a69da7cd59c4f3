// GCC 12 takes the deliberately undefined pass-through operands of its own AVX-512 intrinsics for errors.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"

#include "multiply/ntt64/kernels/kernel_set.h"
#include "multiply/ntt64/kernels/words_avx512.h"

namespace qmp::ntt64 {

constexpr Kernels kernels_avx512 = kernel_set<WordsAvx512>();

}  // namespace qmp::ntt64
