#include "multiply/algorithm_table.h"

#include <algorithm>
#include <utility>

#include "console/console.h"
#include "errors/exception.h"

namespace qmp {

const std::vector<AlgorithmThreshold>& basic_algorithm_list() {
    static const std::vector<AlgorithmThreshold> list = {
        {"BKT", 3712},
        {"FFT", 655360},
        {"VST", 0x12c0000000000},
        {"N64", 0x3800000000000000},
    };
    return list;
}

const std::vector<AlgorithmThreshold>& swap_algorithm_list() {
    static const std::vector<AlgorithmThreshold> list = {};
    return list;
}

namespace {

std::uint32_t bits_of(WordKind kind) {
    return kind == WordKind::basic32 || kind == WordKind::swap32 ? 32 : 64;
}
bool is_swap(WordKind kind) {
    return kind == WordKind::swap32 || kind == WordKind::swap64;
}

// Before main, so that a wrong list shows at start-up and not in the middle of a computation.
[[maybe_unused]] const bool tables_are_built =
    (basic_table_32(), basic_table_64(), swap_table_32(), swap_table_64(), true);

}  // namespace

AlgorithmTable::AlgorithmTable(std::string name, WordKind kind, const std::vector<AlgorithmThreshold>& list)
    : name_(std::move(name)), kind_(kind), word_bits_(bits_of(kind)) {
    for (const AlgorithmThreshold& item : list) {
        bool known = false;
        const Algorithm* algorithm = find_algorithm(item.key, kind, &known);
        if (!known) {
            console::print_warning(std::string("Skipping unknown algorithm: ") + item.key);
            continue;
        }
        if (!algorithm) {
            console::print_warning(std::string("Warning: ") + item.key + " does not support: \"" + name_ +
                                   "\"");
            continue;
        }
        add(item.bits / word_bits_, algorithm);
    }
}

void AlgorithmTable::add(std::uint64_t threshold_words, const Algorithm* algorithm) {
    if (!algorithm) return;
    if (!entries_.empty() && entries_.back().threshold >= threshold_words) {
        throw StringException("AlgorithmTable::add()", "Thresholds must be increasing.");
    }
    // By division: the bits of a wrong threshold may not fit in 64.
    if (threshold_words > algorithm->max_bits / word_bits_) {
        throw StringException("AlgorithmTable::add()", "Thresholds is larger than maximum size.");
    }
    entries_.push_back({threshold_words, algorithm});
}

std::vector<AlgorithmTable::Entry>::const_iterator AlgorithmTable::find(std::uint64_t n) const {
    return std::find_if(entries_.begin(), entries_.end(),
                        [n](const Entry& entry) { return entry.threshold >= n; });
}

void AlgorithmTable::beyond_reach(std::uint64_t n) {
    throw LimitExceededException("AlgorithmTable::get_algorithm()", 0, n);
}

std::uint64_t AlgorithmTable::iPsize(std::uint64_t n, std::uint64_t tasks) const {
    const auto chosen = find(n);
    if (chosen == entries_.end()) {
        throw LimitExceededException(
            is_swap(kind_) ? "AlgorithmTableS::iPsize()" : "AlgorithmTableB::iPsize()", 0, n);
    }
    const auto scratch = [tasks](const Algorithm& algorithm, std::uint64_t length) {
        return std::max(algorithm.psize(length, tasks), algorithm.psize_halved(length, tasks));
    };
    std::uint64_t largest = scratch(*chosen->algorithm, n);
    for (auto entry = entries_.begin(); entry != chosen; ++entry) {
        largest = std::max(largest, scratch(*entry->algorithm, entry->threshold));
    }
    return largest;
}

std::uint64_t AlgorithmTable::largest_product() const {
    return entries_.empty() ? 0 : entries_.back().threshold;
}

const AlgorithmTable& basic_table_32() {
    static const AlgorithmTable table("Basic: 32-bit Word", WordKind::basic32, basic_algorithm_list());
    return table;
}

const AlgorithmTable& basic_table_64() {
    static const AlgorithmTable table("Basic: 64-bit Word", WordKind::basic64, basic_algorithm_list());
    return table;
}

const AlgorithmTable& swap_table_32() {
    static const AlgorithmTable table("Swap: 32-bit Word", WordKind::swap32, swap_algorithm_list());
    return table;
}

const AlgorithmTable& swap_table_64() {
    static const AlgorithmTable table("Swap: 64-bit Word", WordKind::swap64, swap_algorithm_list());
    return table;
}

}  // namespace qmp
