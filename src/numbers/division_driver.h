// The division and the inverse square root as the constants use them: with their buffers carved from the
// computation's memory, and their step on the status line.
#pragma once

#include <cstdint>

#include "numbers/compute_context.h"

namespace qmp {

// a/b to p words: the step "Division...". The result's capacity is p + 3 words.
OwnedBigFloat divide(const ComputeContext& context, BigFloatView a, BigFloatView b, std::uint64_t p);
// 1/sqrt(w) to p words: the step "InvSqrt...". The result's capacity is p + 7 words.
OwnedBigFloat inverse_square_root(const ComputeContext& context, Word w, std::uint64_t p);
// The same within a step that the caller begins and ends.
OwnedBigFloat iterate_inverse_square_root(const ComputeContext& context, Word w, std::uint64_t p);

// Bytes of the region that divide() takes at most for p words, its result not included.
std::uint64_t divide_bytes(std::uint64_t p, std::uint64_t tasks);
std::uint64_t inverse_square_root_bytes(std::uint64_t p, std::uint64_t tasks);

}  // namespace qmp
