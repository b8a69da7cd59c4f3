#include "platform/os/numa.h"

#include <vector>

#include "platform/os/linux/node_folder.h"
#include "platform/os/linux/processor_numbering.h"

namespace qmp::os {
namespace {

const NodeFolder& machine_nodes() {
    static const NodeFolder nodes("/sys/devices/system/node");
    return nodes;
}

}  // namespace

const std::string_view highest_numa_node_source = "Reading /sys/devices/system/node";
const std::string_view numa_node_affinity_source = "Reading the cpulist of a node";

ErrorCode highest_numa_node(std::uint32_t& node) {
    return machine_nodes().highest_node(node);
}

ErrorCode numa_node_affinity(std::uint32_t node, GroupAffinity& affinity) {
    std::vector<std::uint32_t> processors;
    const ErrorCode error = machine_nodes().processors(node, processors);
    affinity = {0, process_numbering().mask_of(processors)};
    return error;
}

}  // namespace qmp::os
