// The plan of a summation: the term range (0, N] cut into consecutive blocks.
//
// Each block is summed exactly; the blocks are folded together from the last to the first, and the running
// sums keep only the words that still count at the start of the block. A block is as long as possible
// while its own growth stays below the cap and below the precision that the terms behind it still
// contribute.
#pragma once

#include <cstdint>
#include <vector>

#include "series/binary_splitting_series.h"

namespace qmp {

struct PsrBlock {
    std::uint64_t a;  // the terms (a, b]
    std::uint64_t b;
    std::uint64_t precision_at_a;  // words needed of the sum that starts at a
    std::uint64_t size;            // estimated words of the block's exact products
    std::uint64_t precision_at_b;  // words needed of the sum that starts at b
    std::uint8_t flag = 0;
};

struct PsrPlan {
    std::uint64_t terms = 0;  // N
    std::vector<PsrBlock> blocks;

    std::uint64_t last() const { return blocks.size() - 1; }
};

// Once this few terms remain, blocks are added only while they still shrink below the remainder.
constexpr std::uint64_t psr_short_remainder = 1000;
// A plan with more blocks than this is warned about on the console.
constexpr std::uint64_t psr_block_warning = 10000;

// The plan for p words. The cap is p words times `factor`: 1, or 1/2 to halve the largest products.
PsrPlan build_psr_plan(const BinarySplittingSeries& series, std::uint64_t p, double factor);

// Estimated words of the exact products over (a, b].
std::uint64_t psr_size(const BinarySplittingSeries& series, std::uint64_t a, std::uint64_t b);

}  // namespace qmp
