// The sizes that the benchmark offers, by name.
//
// Two lists in ascending order: round decimal numbers, and powers of two for users who compare themselves
// with older benchmarks. Their names differ in the case of the letter: "25m" is 25,000,000 decimal digits,
// "32M" is 2^25.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kelvara {

struct BenchmarkSize {
    std::string_view name;
    std::uint64_t digits;  // decimal
};

std::span<const BenchmarkSize> decimal_benchmark_sizes();
std::span<const BenchmarkSize> binary_benchmark_sizes();

// The entry of either list with this name, exactly; null when there is none.
const BenchmarkSize* find_benchmark_size(std::string_view name);
// Which of the lists the entry stands in.
bool is_binary_size(const BenchmarkSize& size);

}  // namespace kelvara
