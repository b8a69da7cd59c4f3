// Leaves of the two sums of the Brent-McMillan method.
#pragma once

#include <cstdint>

#include "numbers/exact_float.h"

namespace qmp {

// Words that S takes at most over (a, b], the longest of the outputs; the buffers of a leaf hold as many and
// a few more.
constexpr std::uint64_t euler_gamma_leaf_spare_words = 3;
std::uint64_t euler_gamma_leaf_words(std::int32_t exponent, std::uint64_t a, std::uint64_t b);

// P, Q, R and S over (a, b], 1 <= b - a: the outputs of Series_EulerGamma_BM_AB for n = 2^exponent, from term
// to term. BufferTooSmallException ("EulerGamma_BM_AB_BSR_End()") when a buffer is shorter than
// euler_gamma_leaf_words() + euler_gamma_leaf_spare_words.
void EulerGamma_BM_AB_BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, ExactFloat& S,
                              std::int32_t exponent, std::uint64_t a, std::uint64_t b);

}  // namespace qmp
