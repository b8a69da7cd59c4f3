// Whether the time of a product jumps between neighbouring sizes.
#pragma once

#include "options.h"

namespace bench {

// Products of n x n words from 10^5 to 10^7 (as far as the dispatch reaches) in steps of 8 %, at the first
// of the chosen levels: the largest factor by which a product is slower than the next longer one, and by
// which the next longer one is slower than it.
void print_steps(const Options& options);

}  // namespace bench
