// The counting kernels at each instruction-set level, for the choice at run time and for tests.
#pragma once

#include <cstdint>

namespace qmp::radix {

// Counts the digit values of whole vectors, from the first on; returns how many values that were.
using CountVectors = std::uint64_t (*)(std::uint64_t* counts, const char* values, std::uint64_t n,
                                       std::uint32_t radix);

// Needs SSSE3.
extern const CountVectors count_vectors_sse4;
extern const CountVectors count_vectors_avx2;
extern const CountVectors count_vectors_avx512;

}  // namespace qmp::radix
