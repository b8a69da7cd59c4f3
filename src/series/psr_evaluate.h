// The evaluation of a plan in memory: its blocks are summed exactly, checked, and folded into running
// sums that keep only the words that still count.
#pragma once

#include <array>
#include <cstdint>

#include "console/progress.h"
#include "numbers/compute_context.h"
#include "series/bss_p2b2_bbp.h"
#include "series/bss_p2b3_type0.h"
#include "series/psr_plan.h"
#include "series/series_euler_gamma_bm_ab.h"

namespace qmp {

// The buffers of an evaluation. The exact ones hold the results of a block, two temporaries each; the running
// ones hold the running P and Q, of the Brent-McMillan sums Q^2, Q P and R, whose S lies in the upper half of
// the last exact buffer: their merges need but one temporary. exact[0] and running[1] lie lowest,
// so that what the other buffers took is one piece once they are released.
struct PsrMemory {
    std::array<CheckedWords, 3> exact;
    std::array<CheckedWords, 3> running;
    CheckedWords scratch;

    // Two of each kind, or three.
    PsrMemory(const ComputeContext& context, const PlanSizes& sizes, std::size_t buffers = 2);
    // Lets go of everything but exact[0] and running[1].
    void release_temporaries();
};

// Sums the blocks from `first` on: P/Q over the terms behind the start of that block, exact to the
// precision of the plan. P and Q lie in the running buffers, and keep precision_at_a + 2 words of block
// `first` unless it is the only one.
// BufferTooSmallException in the family's name when a block's temporaries do not fit, and what the merges
// and checks of its blocks throw.
void B_PSR(const BSS_P2B2_BBP& series, const MultiplyContext& context, Progress* progress,
           const PsrPlan& plan, std::uint64_t first, PsrMemory& memory, BigFloat& P, BigFloat& Q);
void B_PSR(const BSS_P2B3_Type0& series, const MultiplyContext& context, Progress* progress,
           const PsrPlan& plan, std::uint64_t first, PsrMemory& memory, BigFloat& P, BigFloat& Q);
// The same with the running Q^2, Q P, R and S.
void B_PSR(const Series_EulerGamma_BM_AB& series, const MultiplyContext& context, Progress* progress,
           const PsrPlan& plan, std::uint64_t first, PsrMemory& memory,
           Series_EulerGamma_BM_AB::Running& running);

}  // namespace qmp
