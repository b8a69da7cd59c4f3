// The work of a series on one task by its kinds: leaves, merges of each size, the modular check.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "computation.h"

namespace bench {

struct WorkKind {
    std::string name;
    std::uint64_t count = 0;  // 0 when nobody counted
    double seconds = 0;
};

// Sums the blocks of the computation's plan one by one, on one task, timing every leaf and every merge. The
// folds of the blocks are not part of it. Merges come in classes by the words of their Q: "merges, Q 2^k
// words" are those from 2^k to 2^(k+1) - 1. Of the Euler-Mascheroni constant it is the sums A and B. Empty
// for constants that are no such series.
std::vector<WorkKind> profile_series(const Computation& computation, std::uint64_t precision);

}  // namespace bench
