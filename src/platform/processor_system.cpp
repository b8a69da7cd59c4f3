#include "platform/processor_system.h"

namespace qmp {

ProcessorSystem& processor_system() {
    static ProcessorSystem system;
    return system;
}

std::vector<std::uint32_t> group_processors(ProcessorSystem& system) {
    std::vector<std::uint32_t> counts(system.active_processor_groups());
    for (std::uint32_t group = 0; group < counts.size(); ++group) {
        counts[group] = system.active_processors(group);
    }
    return counts;
}

}  // namespace qmp
