// How much scratch products use of what the planner promises.
#pragma once

#include "options.h"

namespace bench {

// Scratch is filled with a mark first; the highest word that has lost it tells how far a product went.
void print_scratch(const Options& options);

}  // namespace bench
