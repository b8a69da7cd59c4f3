// What the allocators of whole pages need of the machine, so that tests can give them another one.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/os/pages.h"
#include "platform/privileges.h"

namespace qmp {

// The NUMA nodes, numbered from 0.
class NodeTopology {
  public:
    virtual ~NodeTopology() = default;
    virtual std::uint64_t count() const = 0;
    // Binds the calling thread to a node's processors. False for a node that does not exist, and when the
    // system refuses.
    virtual bool bind_thread(std::uint64_t node) const = 0;
};

struct MemorySystem {
    os::PageSource* pages;
    Privilege* lock_privilege;
    const NodeTopology* nodes;

    // Every node, ascending.
    std::vector<std::uint64_t> all_nodes() const;
};

const MemorySystem& memory_of_this_machine();

// True when the process may lock pages and have large ones; else prints a warning.
bool acquire_lock_privilege(Privilege& privilege);

}  // namespace qmp
