// What every multiplication receives: how to run in parallel, the computation's twiddle tables, and
// scratch memory that the caller reserved.
//
// The scratch is free for the callee to overwrite from its start; whoever keeps something there passes
// on the rest (after()). Its size comes from the planner, iPsize() of algorithm_table.h. An algorithm
// that finds the twiddle set too small throws LimitExceededException, one that finds the scratch too
// small BufferTooSmallException; neither ever allocates.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

class TwiddleSet;

struct MultiplyContext : ParallelContext {
    const TwiddleSet* twiddles = nullptr;
    Word* scratch = nullptr;  // 64-byte aligned
    std::uint64_t scratch_words = 0;

    MultiplyContext(ParallelContext parallel, const TwiddleSet* twiddle_set, Word* scratch_memory,
                    std::uint64_t scratch_size)
        : ParallelContext(parallel), twiddles(twiddle_set), scratch(scratch_memory), scratch_words(scratch_size) {}

    // The same with the first `words` words of scratch taken. `words` is rounded up to a multiple of 8,
    // so that the rest stays aligned. Throws BufferTooSmallException in the caller's name when the
    // scratch is shorter than that.
    MultiplyContext after(std::uint64_t words, const char* function) const;
    MultiplyContext with_tasks(std::uint64_t tasks) const {
        return {ParallelContext::with_tasks(tasks), twiddles, scratch, scratch_words};
    }
    ParallelContext parallel() const { return *this; }
};

}  // namespace qmp
