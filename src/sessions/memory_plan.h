// What a Ram Only computation reserves, in bytes. Pure functions.
#pragma once

#include <cstdint>

#include "constants/ram_computation.h"

namespace kelvara {

struct MemoryPlan {
    std::uint64_t working = 0;          // the block that every number is carved from
    std::uint64_t largest_product = 0;  // words
    std::uint64_t twiddles = 0;         // the tables for products of that length

    std::uint64_t total() const { return working + twiddles; }
};

// For a computation and the output of so many digits (0 hexadecimal digits: none).
MemoryPlan plan_memory(const RamComputation& computation, std::uint64_t decimal_digits,
                       std::uint64_t hexadecimal_digits);

}  // namespace kelvara
