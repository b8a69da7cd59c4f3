// One block of the Brent-McMillan sums folded into the truncated sums behind it.
#pragma once

#include <array>
#include <cstdint>

#include "numbers/big_float.h"
#include "platform/memory/checked_array.h"
#include "series/series_euler_gamma_bm_ab.h"

namespace qmp {

// Q^2 and Q P of a block, to p words.
void start_euler_gamma_bm_ab(const MultiplyContext& context, std::uint64_t p,
                             const Series_EulerGamma_BM_AB::Buffers& block, BigFloat& square,
                             BigFloat& mixed);

// The running Q^2, Q P, R and S, of at most p + 2 words each, become those from the block's start on, to p
// words. `block` holds its exact P, Q, R and S in exact[0] and exact[1], which are overwritten, as is the
// lower half of exact[2]; each half of an exact buffer holds p + 4 words.
void fold_euler_gamma_bm_ab(const MultiplyContext& context, std::uint64_t p,
                            const Series_EulerGamma_BM_AB::Buffers& block,
                            const std::array<CheckedWords, 3>& exact,
                            Series_EulerGamma_BM_AB::Running& running);

}  // namespace qmp
