// Products of word arrays, dispatched by size through the "Basic: 64-bit Word" table.
//
// Shapes are in words. Destinations never overlap operands. Scratch comes from the context and is sized
// by iPsize(). Lengths beyond the table throw LimitExceededException.
#pragma once

#include <cstdint>

#include "multiply/algorithm_table.h"
#include "multiply/multiply_context.h"

namespace qmp {

// destination[0 .. la + lb) = a * b; la, lb >= 1.
void multiply(const MultiplyContext& context, Word* destination, const Word* a, std::uint64_t la, const Word* b,
              std::uint64_t lb);
// Words [skip, end) of the product; 0 <= skip < end <= la + lb. The words near `skip` are not exact:
// operands are trimmed to what the wanted words need and carries from below may be lost.
void multiply_upper(const MultiplyContext& context, Word* destination, std::uint64_t skip, std::uint64_t end,
                    const Word* a, std::uint64_t la, const Word* b, std::uint64_t lb);
// The same, with half-length transforms where the chosen algorithm has them.
void multiply_upper_halved(const MultiplyContext& context, Word* destination, std::uint64_t skip,
                           std::uint64_t end, const Word* a, std::uint64_t la, const Word* b, std::uint64_t lb);
// Words [skip, end) of the square of a.
void square_upper(const MultiplyContext& context, Word* destination, std::uint64_t skip, std::uint64_t end,
                  const Word* a, std::uint64_t la);

// Parameter objects for a convolution of n words, and for the product of two lengths.
const TransformParameters& construct_transform(TransformParametersBox& box, std::uint64_t n);
const TransformParameters& construct_transform(TransformParametersBox& box, std::uint64_t la, std::uint64_t lb);

// Scratch in bytes, and in words, that products of up to n words need with this many tasks.
std::uint64_t iPsize(std::uint64_t n, std::uint64_t tasks);
inline std::uint64_t scratch_words_for(std::uint64_t n, std::uint64_t tasks) { return (iPsize(n, tasks) + 7) / 8; }

}  // namespace qmp
