#include "stress/sizing.h"

#include <algorithm>
#include <map>

#include "multiply/twiddle_set.h"
#include "multiply/word.h"

namespace kelvara {
namespace {

constexpr std::uint64_t whole_lines(std::uint64_t bytes) {
    return (bytes + 63) / 64 * 64;
}

// Whether sizes fit, and what is learnt of the scratch on the way.
class Search {
  public:
    Search(const StressTest& test, std::uint64_t threads, std::uint64_t bytes)
        : test_(test), threads_(threads), bytes_(bytes) {}

    std::uint64_t most_units() const { return test_.max_bits() / 64; }
    bool fits(std::uint64_t units) {
        if (units > most_units()) return false;
        const StressTestSize size = stress_test_size(test_, units);
        scratch_.emplace(units, size.scratch_bytes);
        // Threads and memory may be any numbers of 64 bits.
        return qmp::DoubleWord{size.part_bytes} * threads_ + size.table_bytes <= bytes_;
    }
    bool scratch_increases() const {
        return std::is_sorted(scratch_.begin(), scratch_.end(),
                              [](const auto& a, const auto& b) { return a.second < b.second; });
    }

  private:
    const StressTest& test_;
    std::uint64_t threads_;
    std::uint64_t bytes_;
    std::map<std::uint64_t, std::uint64_t> scratch_;
};

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

UnitsFound find_largest_units(const StressTest& test, std::uint64_t threads, std::uint64_t bytes) {
    Search search(test, threads, bytes);
    if (!search.fits(1)) return {};

    std::uint64_t beyond = 256;
    while (search.fits(beyond)) {
        beyond = 2 * beyond > search.most_units() ? search.most_units() + 1 : 2 * beyond;
    }
    std::uint64_t units = 1;
    while (beyond - units > 1) {
        const std::uint64_t middle = units + (beyond - units) / 2;
        (search.fits(middle) ? units : beyond) = middle;
    }
    return {units, search.scratch_increases()};
}

}  // namespace kelvara
