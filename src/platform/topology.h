// The program's own numbering of cores and NUMA nodes, and the binding of threads to them.
//
// Cores are numbered 0, 1, 2, ... group by group, and within a group in the order of its processors: they are
// the processors that a thread of this process can be bound to. A quota of processor time (os/threads.h)
// takes no core away, it only leaves some of them idle. The two tables are built once, on first use (start-up
// does it before any worker thread exists), and only read afterwards: any thread may use them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/processor_system.h"

namespace qmp {

class CoreTable {
  public:
    // counts[g] is the number of processors of group g; a group of none contributes no core.
    explicit CoreTable(std::span<const std::uint32_t> counts);

    std::uint64_t size() const { return affinities_.size(); }
    // The affinity that names this core alone; null for a core that does not exist.
    const os::GroupAffinity* affinity(std::uint64_t core) const;
    // The core of one processor of a group.
    std::optional<std::uint64_t> core(std::uint16_t group, std::uint32_t processor) const;
    // The core that an affinity of one processor names.
    std::optional<std::uint64_t> core(const os::GroupAffinity& single) const;

  private:
    std::vector<os::GroupAffinity> affinities_;
    // By group: the core of its first processor, and the number of its processors.
    std::vector<std::pair<std::uint64_t, std::uint32_t>> groups_;
};

struct NumaNode {
    os::GroupAffinity affinity;
    std::vector<std::uint64_t> cores;  // ascending
    // Processors in the affinity that are no cores, and so are missing in the list.
    std::uint64_t skipped = 0;
};

// The node of these processors.
NumaNode numa_node(const CoreTable& cores, const os::GroupAffinity& affinity);
// The only node of a machine that cannot name a node's processors: it has every core. Its affinity is that
// of the first group that has processors.
NumaNode whole_machine_node(const CoreTable& cores);

// Node numbers run from 0 to size() - 1; node 0 always exists. A number that the system skips is a node
// without cores.
class NumaTable {
  public:
    // At least one node.
    explicit NumaTable(std::vector<NumaNode> nodes) : nodes_(std::move(nodes)) {}

    std::uint64_t size() const { return nodes_.size(); }
    // Null for a node that does not exist.
    const NumaNode* find(std::uint64_t node) const;

  private:
    std::vector<NumaNode> nodes_;
};

// These print what they find. A system that cannot tell its nodes ends the program with exit code 1.
CoreTable parse_cores(ProcessorSystem& system);
NumaTable parse_numa_nodes(ProcessorSystem& system, const CoreTable& cores);

// The machine's. The first call prints what was found.
const CoreTable& core_table();
const NumaTable& numa_table();

// Binds the calling thread. False when the core or node does not exist or the system refuses, as it does for
// a node without processors; the thread is left as it was.
bool bind_to_core(std::uint64_t core);
bool bind_to_numa_node(std::uint64_t node);
bool bind_to_core(std::uint64_t core, const CoreTable& cores, ProcessorSystem& system);
bool bind_to_numa_node(std::uint64_t node, const NumaTable& nodes, ProcessorSystem& system);

// "0-3, 8, 10-11" for ascending numbers, "None" for no number.
std::string number_ranges(std::span<const std::uint64_t> numbers);

}  // namespace qmp
