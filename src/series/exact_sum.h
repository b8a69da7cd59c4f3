// Sums of exact floats in place, for the last step of a merge.
#pragma once

#include "numbers/exact_float.h"

namespace qmp {

// a += b and a -= b, whatever their exponents; a's exponent falls to b's when b reaches lower. b does not
// overlap a. BufferTooSmallException in the function's name when a's buffer cannot hold the result and a
// word above it; UnsupportedNegativeException or UnsupportedZeroException when the difference is not
// positive.
void add_in_place(ExactFloat& a, ExactFloatView b);
void subtract_in_place(ExactFloat& a, ExactFloatView b);

}  // namespace qmp
