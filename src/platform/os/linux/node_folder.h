// The NUMA nodes as the kernel shows them: a folder with a folder "nodeN" for each node.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/os/error_codes.h"

namespace qmp::os {

class NodeFolder {
  public:
    explicit NodeFolder(std::string path) : path_(std::move(path)) {}

    // 0 when there is no such folder (the kernel was built without nodes) or no node in it.
    ErrorCode highest_node(std::uint32_t& node) const;
    // The system's numbers of the node's processors, ascending; none for a node of memory only or one that
    // does not exist among others. invalid_data when they cannot be understood; call_not_implemented for
    // node 0 of a kernel that shows no node at all.
    ErrorCode processors(std::uint32_t node, std::vector<std::uint32_t>& list) const;

  private:
    std::string path_;
};

}  // namespace qmp::os
