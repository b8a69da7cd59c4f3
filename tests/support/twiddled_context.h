// A multiplication context with everything that products of a size need: twiddle tables and scratch.
#pragma once

#include <cstdint>

#include "multiply/multiply_context.h"
#include "support/twiddle_memory.h"
#include "support/words_reference.h"

namespace kelvara_test {

class TwiddledContext {
  public:
    // Twiddle tables for products of up to `product_words` words, those of the floating-point transform up to
    // `fft_words`; scratch as given, in bytes.
    TwiddledContext(std::uint64_t product_words, std::uint64_t scratch_bytes,
                    qmp::ParallelContext parallel = qmp::ParallelContext::sequential(),
                    std::uint64_t fft_words = 1572864)
        : twiddles_(product_words, fft_words), scratch_((scratch_bytes + 7) / 8), parallel_(parallel) {}

    qmp::MultiplyContext context() { return {parallel_, twiddles_.get(), scratch_.data(), scratch_.size()}; }
    qmp::MultiplyContext context(qmp::ParallelContext parallel) {
        return {parallel, twiddles_.get(), scratch_.data(), scratch_.size()};
    }
    bool guards_intact() const { return scratch_.guards_intact(); }

  private:
    TwiddleMemory twiddles_;
    GuardedWords scratch_;
    qmp::ParallelContext parallel_;
};

}  // namespace kelvara_test
