// The calls to the system that the topology and the binding of threads are made of.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/os/numa.h"
#include "platform/os/threads.h"

namespace qmp {

// Each operation is that of os/threads.h or os/numa.h of the same name. A class of its own so that a machine
// of any shape, and one whose calls fail, can stand in for this one.
class ProcessorSystem {
  public:
    virtual ~ProcessorSystem() = default;

    virtual std::uint32_t active_processor_groups() { return os::active_processor_groups(); }
    virtual std::uint32_t active_processors(std::uint32_t group) { return os::active_processors(group); }
    virtual std::optional<os::GroupAffinity> thread_group_affinity() { return os::thread_group_affinity(); }
    virtual bool set_thread_group_affinity(const os::GroupAffinity& affinity) {
        return os::set_thread_group_affinity(affinity);
    }
    virtual os::ErrorCode highest_numa_node(std::uint32_t& node) { return os::highest_numa_node(node); }
    virtual os::ErrorCode numa_node_affinity(std::uint32_t node, os::GroupAffinity& affinity) {
        return os::numa_node_affinity(node, affinity);
    }
};

// This machine. Usable from any thread.
ProcessorSystem& processor_system();

}  // namespace qmp
