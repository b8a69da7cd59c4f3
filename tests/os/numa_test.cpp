// What the seam promises of NUMA nodes, on every system.
#include "platform/os/numa.h"

#include <gtest/gtest.h>

namespace qmp::os {
namespace {

TEST(OsNuma, NodesHoldProcessorsOfTheirGroups) {
    std::uint32_t highest = 99999;
    ASSERT_EQ(highest_numa_node(highest), no_error);
    ASSERT_LT(highest, 1024u);
    std::uint64_t total = 0;
    for (std::uint32_t node = 0; node <= highest; ++node) {
        GroupAffinity affinity;
        const ErrorCode error = numa_node_affinity(node, affinity);
        if (error == call_not_implemented && highest == 0) return;  // the one node has every processor
        ASSERT_EQ(error, no_error);
        for (const std::uint32_t processor : affinity.mask.processors()) {
            EXPECT_LT(processor, active_processors(affinity.group));
        }
        total += affinity.mask.count();
    }
    std::uint64_t all = 0;
    for (std::uint32_t group = 0; group < active_processor_groups(); ++group) all += active_processors(group);
    EXPECT_EQ(total, all);
}

}  // namespace
}  // namespace qmp::os
