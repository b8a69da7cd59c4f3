// Residues modulo R^n - 1 and R^n + 1, R = 2^64, as words: folding a long operand to them, and putting a
// product together from its two.
//
// In parallel over blocks of words. A block finds its own carry by looking at the words below it, which one
// or two decide for all but contrived operands.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "platform/parallel/parallel_context.h"

namespace qmp {

// destination[0 .. n) = the operand modulo R^n - 1, where a multiple of R^n - 1 may come out as all ones. The
// operand is `bytes` <= 16n little-endian bytes, apart from the destination.
void fold_cyclic(ParallelContext parallel, Word* destination, const void* operand, std::uint64_t bytes,
                 std::uint64_t n);
// The same modulo R^n + 1. True when the residue is R^n, degenerate in n words: they are zero then.
bool fold_negacyclic(ParallelContext parallel, Word* destination, const void* operand, std::uint64_t bytes,
                     std::uint64_t n);

// destination[0 .. n) = -operand modulo R^n + 1, bytes <= 8n. True when that is R^n, as above.
bool negate_negacyclic(Word* destination, const void* operand, std::uint64_t bytes, std::uint64_t n);

// Bytes [first, end) of the product below R^(2n) - 1 that is x modulo R^n - 1 and y modulo R^n + 1;
// end <= 16n. `y_degenerate`: y is R^n, and its words are zero. x and y are overwritten.
void recombine(ParallelContext parallel, void* destination, std::uint64_t first, std::uint64_t end, Word* x,
               Word* y, bool y_degenerate, std::uint64_t n);

}  // namespace qmp
