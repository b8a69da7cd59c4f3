// One block of the Brent-McMillan sums folded into the truncated sums behind it.
#pragma once

#include <array>
#include <cstdint>

#include "numbers/big_float.h"
#include "platform/memory/checked_array.h"
#include "series/series_euler_gamma_bm_ab.h"

namespace qmp {

// The running Q, R and T, of at most p + 2 words each, become those from the block's start on, to p words.
// `block` holds its exact P, Q, R and T in the two halves of exact[0] and of exact[1], which are overwritten;
// each half of an exact buffer holds p + 4 words.
void fold_euler_gamma_bm_ab(const MultiplyContext& context, std::uint64_t p,
                            const Series_EulerGamma_BM_AB::Buffers& block,
                            const std::array<CheckedWords, 3>& exact,
                            std::array<BigFloat, Series_EulerGamma_BM_AB::running_count>& running);

}  // namespace qmp
