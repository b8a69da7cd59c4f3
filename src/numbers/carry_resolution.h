// Carries between the blocks of a word array that was worked on in parallel.
//
// Each block is left with one signed carry (-1, 0, +1) to be added at its lowest word. Whether a carry
// passes through a block depends only on the block being all ones or all zeros, so that two parallel
// passes and one short sequential pass over the blocks settle all of them.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

// A block's words after its own carry was applied: all zeros, all ones, or anything else.
enum class BlockState : std::uint8_t { zeros = 0x00, mixed = 0x80, ones = 0xff };

struct CarryStatus {
    BlockState state;
    std::int8_t carry;  // out of the block's top: -1, 0, +1
};

// Applies a carry of -1, 0 or +1 to n words. The run stops when n is 0.
CarryStatus bp_ksr_carry(int carry, Word* words, std::uint64_t n);

// Arrays below this many words are resolved block after block on the calling thread.
constexpr std::uint64_t carry_resolution_threshold = 20000;

// Applies carries[i] to block i of `cut` for all blocks of words[0 .. n) and returns the carry out of the
// whole array. `carries` is overwritten; `status` holds cut.count entries of scratch.
int resolve_carries(ParallelContext parallel, Word* words, std::uint64_t n, const BlockCut& cut,
                    std::int8_t* carries, CarryStatus* status);

}  // namespace qmp
