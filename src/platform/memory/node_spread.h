// How evenly pages are spread over NUMA nodes.
#pragma once

#include <cstdint>
#include <map>

#include "platform/memory/basic_allocator.h"

namespace qmp {

// Pages by the node that they stand on.
using NodePageCounts = std::map<std::int32_t, std::uint64_t>;

// With c pages on each of n nodes, T pages in all and m = T / n: max(0, 1 - sqrt(n sum(c - m)^2 / (n - 1)) /
// T). One node counts as even; -1.0 without any.
SpreadRecord spread_of(const NodePageCounts& counts);

}  // namespace qmp
