// The check of every summed block: the check values that the exact numbers carry through all operations
// against those of the words that were really produced.
//
// A difference means that some product or sum produced wrong words (failing hardware, or a fault of the
// program). It is never repaired.
#pragma once

#include <cstdint>
#include <span>

#include "console/progress.h"
#include "numbers/exact_float.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

// From this many words of the first output on, the outputs are checked in parallel.
constexpr std::uint64_t parallel_verify_threshold = 10000;

// The stored check value less the recomputed one, modulo 2^61 - 1: 0 for a sound number.
std::uint64_t recheck(ParallelContext parallel, ExactFloatView x);

// Checks the outputs of the block (a, b]. Throws kelvara::BSRModularCheckFailedException with the
// differences, after a message on `progress` if there is one.
void qcb_Verify_BSR(Progress* progress, std::uint64_t a, std::uint64_t b, std::span<const ExactFloat> outputs,
                    ParallelContext parallel);

}  // namespace qmp
