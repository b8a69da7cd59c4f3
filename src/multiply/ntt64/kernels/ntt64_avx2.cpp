#include "multiply/ntt64/kernels/kernel_set.h"
#include "multiply/ntt64/kernels/words_avx2.h"

namespace qmp::ntt64 {

constexpr Kernels kernels_avx2 = kernel_set<WordsAvx2>();

}  // namespace qmp::ntt64
