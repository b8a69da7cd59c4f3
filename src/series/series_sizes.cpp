#include "series/series_sizes.h"

#include <algorithm>

#include "multiply/multiply.h"
#include "numbers/big_float.h"
#include "series/psr_plan.h"

namespace qmp {

namespace {

// Halvings that the word count allows for below the parallel levels, whatever the range.
constexpr int serial_halvings = 64;

// Longest product of folding block i into the running values. These are no longer than what the fold
// before left, or, the first time, than the exact result of the last block.
std::uint64_t fold_product(const BinarySplittingSeries& series, const PsrPlan& plan, std::uint64_t i) {
    const PsrBlock& block = plan.blocks[i];
    const std::uint64_t limit = block.precision_at_a + big_float_extra_precision;
    const std::uint64_t running = i + 1 == plan.last() ? plan.blocks[i + 1].size + series.size_margin
                                                       : block.precision_at_b + big_float_extra_precision;
    return std::min(block.size + series.size_margin, limit) + std::min(running, limit) + fold_guard_words;
}

}  // namespace

std::uint64_t TableScratch(std::uint64_t n, std::uint64_t tasks) {
    return iPsize(n, tasks);
}

BsrSizes BSR_parallel_sizes(const BinarySplittingSeries& series, std::uint64_t s, std::uint64_t tasks,
                            std::uint64_t merge_tasks) {
    const std::uint64_t margin = series.size_margin;
    std::uint64_t t = tasks;
    const std::uint64_t t0 = std::min(t, merge_tasks);
    std::uint64_t v = s / 2 + margin;
    std::uint64_t scratch = TableScratch(2 * v, t0);
    unsigned level = 0;
    while (t > 1) {
        level++;
        v = v / 2 + margin;
        // 64 bytes for each task, since its share is rounded down to whole cache lines.
        scratch = std::max(scratch, (TableScratch(2 * v, std::min(t, t0)) + 64) << level);
        t = (t + 1) >> 1;
    }
    std::uint64_t words = v;
    for (int i = 0; i < serial_halvings; i++) {
        v = v / 2 + margin;
        words += v;
    }
    return {words << level, scratch};
}

BsrSizes BSR_sizes(const BinarySplittingSeries& series, std::uint64_t s, std::uint64_t depth,
                   std::uint64_t tasks) {
    const std::uint64_t doubled = bsr_tasks(tasks);
    if (depth == 0 || doubled <= 1) return BSR_parallel_sizes(series, s, doubled, tasks);

    // The left halves stay while the right ones are summed.
    std::uint64_t u = s / 2 + series.size_margin;
    const std::uint64_t scratch = TableScratch(2 * u, tasks);
    std::uint64_t kept = u;
    for (std::uint64_t i = 2; i <= depth; i++) {
        u = u / 2 + series.size_margin;
        kept += u;
    }
    const BsrSizes below = BSR_parallel_sizes(series, u, doubled, tasks);
    return {below.words + kept, std::max(scratch, below.scratch_bytes)};
}

PlanSizes BinarySplittingSeries::SizesForPlan(const PsrPlan& plan, std::uint64_t first,
                                              std::uint64_t tasks) const {
    const PsrBlock& block = plan.blocks[first];
    PlanSizes sizes = {};
    sizes.scratch_bytes = TableScratch(2 * ((block.precision_at_b + block.size) / 2 + size_margin), tasks);
    std::uint64_t last_words = 0;
    for (std::uint64_t i = first; i < plan.blocks.size(); i++) {
        const BsrSizes exact = BSR_sizes(*this, plan.blocks[i].size, 1, tasks);
        last_words = exact.words;
        sizes.exact_words = std::max(sizes.exact_words, exact.words);
        sizes.scratch_bytes = std::max(sizes.scratch_bytes, exact.scratch_bytes);
        // The running values of the first fold are as long as the last block made them, which can be more
        // than the precision they stand for.
        if (i < plan.last()) {
            sizes.scratch_bytes =
                std::max(sizes.scratch_bytes, TableScratch(fold_product(*this, plan, i), tasks));
        }
    }
    sizes.running_words = std::max(block.precision_at_a + size_margin, 2 * last_words);
    return sizes;
}

std::uint64_t psr_largest_product(const BinarySplittingSeries& series, const PsrPlan& plan) {
    std::uint64_t longest = 0;
    for (std::uint64_t i = 0; i < plan.blocks.size(); i++) {
        longest = std::max(longest, 2 * (plan.blocks[i].size / 2 + series.size_margin));
        if (i < plan.last()) longest = std::max(longest, fold_product(series, plan, i));
    }
    return longest;
}

}  // namespace qmp
