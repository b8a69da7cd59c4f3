// The program's own numbering of cores and NUMA nodes, and the binding of threads to them.
//
// Cores are numbered 0, 1, 2, ... group by group, and within a group in the order of its processors. The
// two tables are built once, on first use (start-up does it before any worker thread exists), and only read
// afterwards: any thread may use them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "platform/os/threads.h"

namespace qmp {

class CoreTable {
  public:
    // counts[g] is the number of processors of group g; a group of none contributes no core.
    explicit CoreTable(const std::vector<std::uint32_t>& counts);

    std::uint64_t size() const { return affinities_.size(); }
    // The affinity that names this core alone; nothing for a core that does not exist.
    std::optional<os::GroupAffinity> affinity(std::uint64_t core) const;
    // The core that an affinity of one processor names.
    std::optional<std::uint64_t> core(const os::GroupAffinity& single) const;

  private:
    std::vector<os::GroupAffinity> affinities_;
    std::map<os::GroupAffinity, std::uint64_t> cores_;
};

struct NumaNode {
    os::GroupAffinity affinity;
    std::vector<std::uint64_t> cores;  // ascending
};

// Node numbers run from 0 to size() - 1; node 0 always exists.
class NumaTable {
  public:
    explicit NumaTable(std::vector<NumaNode> nodes);

    std::uint64_t size() const { return nodes_.size(); }
    // Null for a node that does not exist.
    const NumaNode* find(std::uint64_t node) const;

  private:
    std::vector<NumaNode> nodes_;
};

// The machine's. The first call prints what was found.
const CoreTable& core_table();
const NumaTable& numa_table();

// Binds the calling thread. False when the core or node does not exist or the system refuses.
bool bind_to_core(std::uint64_t core);
bool bind_to_numa_node(std::uint64_t node);

}  // namespace qmp
