// "BKT", basecase and Karatsuba, as a multiplication algorithm. Runs on the calling thread.
//
// A transformed operand is its length in one word and a copy of its words; products of transformed
// operands are ordinary products. Where one is longer than the convolution by w words, its top w words are
// added to its lowest w words, and the carry of that addition is dropped, so that the words from w up to
// the convolution's end are the product's own, all of them.
//
// Parameter objects of any two lengths are compatible.
#pragma once

#include "multiply/algorithm.h"

namespace qmp::basecase {

const Algorithm64& algorithm64();
const Algorithm32& algorithm32();

}  // namespace qmp::basecase
