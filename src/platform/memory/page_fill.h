// Filling fresh memory with a fixed pattern, so that every page is really there, and in its place, before
// timed work begins.
#pragma once

#include <cstdint>

#include "platform/parallel/basic_parallelizer.h"

namespace qmp {

// The pattern of one range of n bytes at a: '{' first and '@' last, then over all whole 32-bit words from
// (a + 3) rounded down to a multiple of 4, word k = 0xc857661b - k * k * 0x37d46e8b modulo 2^32. Where they
// meet, the words overwrite the two marks.
void fill_range(void* range, std::uint64_t bytes);

// The range cut into tasks / 4 blocks, each with the pattern of its own; one block without a parallelizer
// or with fewer than two.
void fill_pages(void* range, std::uint64_t bytes, BasicParallelizer* parallelizer, std::uint64_t tasks);

}  // namespace qmp
