// NUMA nodes and their processors.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/os/error_codes.h"
#include "platform/os/threads.h"

namespace qmp::os {

// The highest of the machine's node numbers; 0 where the system knows no nodes. Numbers can be missing
// below it.
ErrorCode highest_numa_node(std::uint32_t& node);

// The processors of a node, as far as the process may use them, in the numbering of threads.h. An empty mask
// for a node that has none or does not exist. call_not_implemented where the system cannot tell.
ErrorCode numa_node_affinity(std::uint32_t node, GroupAffinity& affinity);

// What the two ask, as a message names it: "GetNumaHighestNodeNumber()".
extern const std::string_view highest_numa_node_source;
extern const std::string_view numa_node_affinity_source;

}  // namespace qmp::os
