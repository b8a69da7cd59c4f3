#include "platform/memory/memory_system.h"

#include <numeric>
#include <string>

#include "console/console.h"
#include "platform/topology.h"

namespace qmp {
namespace {

class MachineNodes final : public NodeTopology {
  public:
    std::uint64_t count() const override { return numa_table().size(); }
    bool bind_thread(std::uint64_t node) const override { return bind_to_numa_node(node); }
};

}  // namespace

std::vector<std::uint64_t> MemorySystem::all_nodes() const {
    std::vector<std::uint64_t> numbers(nodes->count());
    std::iota(numbers.begin(), numbers.end(), std::uint64_t{0});
    return numbers;
}

const MemorySystem& memory_of_this_machine() {
    static const MachineNodes nodes;
    static const MemorySystem system{&os::system_pages(), &lock_memory_privilege(), &nodes};
    return system;
}

bool acquire_lock_privilege(Privilege& privilege) {
    if (privilege.held()) return true;
    console::print_warning("Unable to acquire the permission, \"" +
                           std::string(os::lock_memory_permission()) +
                           "\".\nLarge pages and page locking may not be possible.\n");
    return false;
}

}  // namespace qmp
