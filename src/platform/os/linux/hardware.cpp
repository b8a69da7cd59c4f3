#include "platform/os/hardware.h"

#include <algorithm>

#include "platform/os/linux/hardware_facts.h"
#include "platform/os/memory.h"
#include "platform/os/threads.h"

namespace qmp::os {

std::string os_version() {
    return os_version_of("");
}

ProcessorCounts processor_counts() {
    ProcessorCounts counts = processor_counts_of("");
    // A container may hide the folders.
    if (counts.logical_cores == 0) counts.logical_cores = active_processors();
    return counts;
}

std::uint64_t base_frequency() {
    return base_frequency_of("");
}

std::uint64_t installed_memory() {
    return std::max(memory_blocks_of(""), total_physical_memory());
}

Motherboard motherboard(SerialNumber serial_number) {
    return motherboard_of("", serial_number);
}

std::vector<MemoryModule> memory_modules() {
    return memory_modules_of("");
}

}  // namespace qmp::os
