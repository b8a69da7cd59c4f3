// The twiddle tables of one computation, shared by all its transforms.
//
// Built once per computation into memory that the caller reserved; read-only afterwards. For each length
// multiplier r = 1, 3, 5, 7 that the computation's lengths use: a table of the floating-point transform, and
// the column tables of the vector transform when products go beyond the floating-point transform's range.
#pragma once

#include <array>
#include <cstdint>

#include "multiply/fft/twiddle_table.h"
#include "multiply/vst/column_tables.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

class TwiddleSet {
  public:
    // Longest products, in words, that the tables of algorithms give to the floating-point transform.
    static constexpr std::uint64_t fft_product_words = 10240;

    // Bytes of table memory for products of up to `product_words` words; 0 when none needs a table. Tables of
    // the floating-point transform reach up to `fft_words` only.
    static std::uint64_t bytes_needed(std::uint64_t product_words,
                                      std::uint64_t fft_words = fft_product_words);

    // `memory` is 64-byte aligned, holds bytes_needed(product_words, fft_words) bytes and outlives the set.
    TwiddleSet(void* memory, std::uint64_t bytes, std::uint64_t product_words, ParallelContext parallel,
               std::uint64_t fft_words = fft_product_words);

    // Largest product, in words, that the tables cover.
    std::uint64_t largest_product() const { return largest_product_; }
    // The floating-point transform's table of a length multiplier, or null when the set has none.
    const fft::TwiddleTable* table(std::uint32_t multiplier) const;
    // The vector transform's tables of a length multiplier, or null.
    const vst::ColumnTables* columns(std::uint32_t multiplier) const;

  private:
    std::uint64_t largest_product_;
    std::array<fft::TwiddleTable, 4> tables_;  // r = 1, 3, 5, 7
    std::array<bool, 4> built_{};
    std::array<vst::ColumnTables, 4> columns_;
};

}  // namespace qmp
