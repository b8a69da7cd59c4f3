// Tables of products beside GMP's, for each level and task count.
#pragma once

#include "options.h"

namespace bench {

// n x n words, n-word squares, n x n/10 words. False when a product differs from GMP's.
bool print_products(const Options& options);
bool print_squares(const Options& options);
bool print_unbalanced(const Options& options);

}  // namespace bench
