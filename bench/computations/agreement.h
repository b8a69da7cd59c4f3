// Whether computations of the same digits by different ways gave the same digits.
#pragma once

#include <vector>

#include "tables.h"

namespace bench {

// A table of the digit files' digests. False, with a line for each, when files of a constant differ: for the
// same number of digits, or a shorter one from the beginning of a longer one.
bool print_agreement(const std::vector<Measured>& all);

}  // namespace bench
