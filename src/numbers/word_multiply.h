// The product of a word array with one word, over the tasks of a parallel context.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

// Smallest block of a task; shorter arrays stay on the calling thread.
constexpr std::uint64_t word_multiply_block = 20000;
constexpr std::uint64_t word_multiply_most_tasks = 64;

// destination = a * w over n words; returns the word above the top. The destination may be a itself, but
// may not overlap it at another offset.
Word multiply_by_word(ParallelContext parallel, Word* destination, const Word* a, std::uint64_t n, Word w);

}  // namespace qmp
