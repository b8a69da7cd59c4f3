// The twiddle tables of one computation, shared by all its transforms.
//
// Built once per computation into memory that the caller reserved; read-only afterwards. One table for
// each length multiplier r = 1, 3, 5, 7 that the computation's transform lengths use, each as large as
// the largest power of two that r needs.
#pragma once

#include <array>
#include <cstdint>

#include "multiply/fft/twiddle_table.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

class TwiddleSet {
 public:
    // Bytes of table memory for products of up to `product_words` words; 0 when none needs a table.
    static std::uint64_t bytes_needed(std::uint64_t product_words);

    // `memory` is 64-byte aligned, holds bytes_needed(product_words) bytes and outlives the set.
    TwiddleSet(void* memory, std::uint64_t bytes, std::uint64_t product_words, ParallelContext parallel);

    // Largest product, in words, that the tables cover.
    std::uint64_t largest_product() const { return largest_product_; }
    // The table of a length multiplier, or null when the set has none.
    const fft::TwiddleTable* table(std::uint32_t multiplier) const;

 private:
    std::uint64_t largest_product_;
    std::array<fft::TwiddleTable, 4> tables_;  // r = 1, 3, 5, 7
    std::array<bool, 4> built_{};
};

}  // namespace qmp
