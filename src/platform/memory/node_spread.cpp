#include "platform/memory/node_spread.h"

#include <algorithm>
#include <cmath>

namespace qmp {

SpreadRecord spread_of(const NodePageCounts& counts) {
    if (counts.empty()) return {0, -1.0};
    if (counts.size() == 1) return {1, 1.0};
    const auto nodes = static_cast<double>(counts.size());
    double total = 0;
    for (const auto& [node, pages] : counts) total += static_cast<double>(pages);
    const double mean = total / nodes;
    double squares = 0;
    for (const auto& [node, pages] : counts) {
        const double difference = static_cast<double>(pages) - mean;
        squares += difference * difference;
    }
    return {counts.size(), std::max(0.0, 1.0 - std::sqrt(squares / (nodes - 1) * nodes) / total)};
}

}  // namespace qmp
