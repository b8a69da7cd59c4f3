// The schoolbook product as the number objects call it for short operands, past the dispatch by size.
#pragma once

#include <cstdint>

#include "multiply/word.h"

namespace qmp {

// destination[0 .. la + lb) = a * b; la, lb >= 1 in either order. The destination overlaps no operand.
void basecase_product(Word* destination, const Word* a, std::uint64_t la, const Word* b, std::uint64_t lb);

}  // namespace qmp
