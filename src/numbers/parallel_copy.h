// Copies of words: plain below 16384 words, in blocks of at least that over the tasks from there on.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

constexpr std::uint64_t parallel_copy_threshold = 16384;

// The ranges do not overlap.
void parallel_copy(ParallelContext parallel, Word* destination, const Word* source, std::uint64_t words);

}  // namespace qmp
