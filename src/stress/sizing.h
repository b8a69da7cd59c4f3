// How long the products of a test are, given the memory.
#pragma once

#include <cstdint>

#include "stress/stress_test.h"

namespace kelvara {

// The memory of one size of a test, in bytes, each a multiple of 64. A thread's part holds its operand, its
// scratch and its product, in this order.
struct StressTestSize {
    std::uint64_t units = 0;  // words that the product may have
    std::uint64_t operand_bytes = 0;
    std::uint64_t scratch_bytes = 0;
    std::uint64_t part_bytes = 0;
    std::uint64_t table_bytes = 0;  // twiddle tables, shared by the threads that work on this memory

    // Of the operand: half the units, in whole cache lines. 0 for fewer than 16 units, which no test can use.
    std::uint64_t operand_words() const { return units / 2 / 8 * 8; }
    std::uint64_t product_words() const { return 2 * operand_words(); }
};

// units >= 1 and 64 * units <= test.max_bits().
StressTestSize stress_test_size(const StressTest& test, std::uint64_t units);

struct UnitsFound {
    std::uint64_t units = 0;
    // Of the sizes looked at, longer ones never needed less scratch, as a search takes for granted.
    bool scratch_increases = true;
};

// The most units with which so many threads, their tables shared, fit the memory; 0 when not even one unit
// does.
UnitsFound find_largest_units(const StressTest& test, std::uint64_t threads, std::uint64_t bytes);

}  // namespace kelvara
