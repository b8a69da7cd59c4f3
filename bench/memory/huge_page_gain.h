// What huge pages bring to a product.
#pragma once

#include "options.h"

namespace bench {

// The same product in heaps of small pages and in heaps of large ones, as far as the system has them. False
// when the memory or the engine does not reach it.
bool print_gain(const Options& options);

}  // namespace bench
