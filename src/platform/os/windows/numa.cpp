#include "platform/os/numa.h"

#include <windows.h>

namespace qmp::os {

const std::string_view highest_numa_node_source = "GetNumaHighestNodeNumber()";
const std::string_view numa_node_affinity_source = "GetNumaNodeProcessorMaskEx()";

ErrorCode highest_numa_node(std::uint32_t& node) {
    ULONG highest = 0;
    if (!GetNumaHighestNodeNumber(&highest)) return GetLastError();
    node = highest;
    return no_error;
}

ErrorCode numa_node_affinity(std::uint32_t node, GroupAffinity& affinity) {
    affinity = {};
    GROUP_AFFINITY found{};
    if (GetNumaNodeProcessorMaskEx(static_cast<USHORT>(node), &found)) {
        // The group of an empty mask is undefined.
        if (found.Mask != 0) affinity = {found.Group, ProcessorMask(found.Mask)};
        return no_error;
    }
    // Node numbers are not always consecutive, and a number in between is an invalid one.
    const ErrorCode error = GetLastError();
    return error == invalid_parameter ? no_error : error;
}

}  // namespace qmp::os
