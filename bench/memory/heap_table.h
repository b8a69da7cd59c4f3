// How fast memory is reserved and filled.
#pragma once

#include "options.h"

namespace bench {

// Every allocator, and fresh memory written by memset. False when a heap could not be had.
bool print_heaps(const Options& options);

}  // namespace bench
