// Twiddle tables with their memory, for tests that multiply.
#pragma once

#include <cstdint>

#include "multiply/twiddle_set.h"
#include "platform/memory/checked_array.h"

namespace kelvara_test {

class TwiddleMemory {
  public:
    // The floating-point transform's tables as far as that goes, unless `fft_words` says less.
    explicit TwiddleMemory(std::uint64_t product_words, std::uint64_t fft_words = 1572864)
        : memory_(nullptr, (qmp::TwiddleSet::bytes_needed(product_words, fft_words) + 7) / 8),
          set_(memory_.data(), memory_.words() * sizeof(std::uint64_t), product_words,
               qmp::ParallelContext::sequential(), fft_words) {}
    const qmp::TwiddleSet* get() const { return &set_; }

  private:
    qmp::CheckedWords memory_;
    qmp::TwiddleSet set_;
};

// Tables for every product of the algorithm table, built once.
const qmp::TwiddleSet& shared_twiddles();

}  // namespace kelvara_test
