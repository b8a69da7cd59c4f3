// A multiplication context with everything that products of a size need: twiddle tables and scratch.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "multiply/twiddle_set.h"
#include "support/words_reference.h"

namespace kelvara_test {

class TwiddledContext {
  public:
    // Twiddle tables for products of up to `product_words` words; scratch as given, in bytes.
    TwiddledContext(std::uint64_t product_words, std::uint64_t scratch_bytes,
                    qmp::ParallelContext parallel = qmp::ParallelContext::sequential())
        : memory_((qmp::TwiddleSet::bytes_needed(product_words) + 7) / 8),
          scratch_((scratch_bytes + 7) / 8),
          twiddles_(memory_.data(), qmp::TwiddleSet::bytes_needed(product_words), product_words, parallel),
          parallel_(parallel) {}

    qmp::MultiplyContext context() { return {parallel_, &twiddles_, scratch_.data(), scratch_.size()}; }
    qmp::MultiplyContext context(qmp::ParallelContext parallel) {
        return {parallel, &twiddles_, scratch_.data(), scratch_.size()};
    }
    const qmp::TwiddleSet& twiddles() const { return twiddles_; }
    bool guards_intact() const { return memory_.guards_intact() && scratch_.guards_intact(); }

  private:
    GuardedWords memory_;
    GuardedWords scratch_;
    qmp::TwiddleSet twiddles_;
    qmp::ParallelContext parallel_;
};

}  // namespace kelvara_test
