#include "stress/sizing.h"

#include <algorithm>

#include "multiply/twiddle_set.h"
#include "multiply/word.h"

namespace kelvara {
namespace {

constexpr std::uint64_t whole_lines(std::uint64_t bytes) {
    return (bytes + 63) / 64 * 64;
}

// Threads and memory may be any numbers of 64 bits.
bool fits(const StressTest& test, std::uint64_t units, std::uint64_t threads, std::uint64_t bytes) {
    const StressTestSize size = stress_test_size(test, units);
    return qmp::DoubleWord{size.part_bytes} * threads + size.table_bytes <= bytes;
}

}  // namespace

StressTestSize stress_test_size(const StressTest& test, std::uint64_t units) {
    StressTestSize size;
    size.units = units;
    size.operand_bytes = 8 * size.operand_words();
    size.scratch_bytes = whole_lines(test.scratch_bytes(units));
    size.part_bytes = whole_lines(8 * units + size.operand_bytes + size.scratch_bytes);
    const TwiddleReach reach = test.twiddle_reach(units);
    if (reach.product_words != 0) {
        size.table_bytes = whole_lines(qmp::TwiddleSet::bytes_needed(reach.product_words, reach.fft_words));
    }
    return size;
}

std::uint64_t largest_units(const StressTest& test, std::uint64_t threads, std::uint64_t bytes) {
    const std::uint64_t most = test.max_bits() / 64;
    const auto possible = [&](std::uint64_t units) {
        return units <= most && fits(test, units, threads, bytes);
    };
    if (!possible(1)) return 0;

    std::uint64_t beyond = 256;
    while (possible(beyond)) beyond = 2 * beyond > most ? most + 1 : 2 * beyond;
    std::uint64_t units = 1;
    while (beyond - units > 1) {
        const std::uint64_t middle = units + (beyond - units) / 2;
        (possible(middle) ? units : beyond) = middle;
    }
    return units;
}

}  // namespace kelvara
