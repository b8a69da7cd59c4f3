// How much memory a binary splitting needs: its output buffers, and the scratch of its multiplications.
//
// The bounds follow from the cost model of the series with its margin, so that they are known before
// anything is summed. All functions throw LimitExceededException ("AlgorithmTableB::iPsize()") when no
// multiplication reaches the length.
#pragma once

#include <cstdint>

#include "series/binary_splitting_series.h"

namespace qmp {

// Scratch in bytes for every product of up to n words, whichever algorithm of the table serves it.
std::uint64_t TableScratch(std::uint64_t n, std::uint64_t tasks);

struct BsrSizes {
    std::uint64_t words;          // of each output buffer
    std::uint64_t scratch_bytes;  // shared by all tasks
};

// For a range whose exact result is about `s` words, summed with `tasks` tasks and merged with
// `merge_tasks`.
BsrSizes BSR_parallel_sizes(const BinarySplittingSeries& series, std::uint64_t s, std::uint64_t tasks,
                            std::uint64_t merge_tasks);
// The same for a block that is first split serially `depth` times.
BsrSizes BSR_sizes(const BinarySplittingSeries& series, std::uint64_t s, std::uint64_t depth,
                   std::uint64_t tasks);

// Tasks of the recursion below the serial levels of a block: twice the threads, so that none of them idles
// while another finishes its last piece.
inline std::uint64_t bsr_tasks(std::uint64_t tasks) {
    return tasks >= 2 ? 2 * tasks : tasks;
}

// Words that the convolution of a fold has beyond the lengths of its operands.
constexpr std::uint64_t fold_guard_words = 6;

// Longest product, in words, that the evaluation of the plan asks of the multiplication.
std::uint64_t psr_largest_product(const BinarySplittingSeries& series, const PsrPlan& plan);

}  // namespace qmp
