// What the menus say about a figure of memory, in bytes.
#pragma once

#include <cstdint>

namespace kelvara {

// False, after a line that says so, for 2^63 bytes or more.
bool fits_address_space(std::uint64_t bytes);

struct PhysicalMemory {  // bytes; 0 where the system does not tell
    std::uint64_t total = 0;
    std::uint64_t available = 0;
};

// What this machine has, with at most 0x6ffffffffffffff9 bytes available.
PhysicalMemory physical_memory();

// Warns when the machine has less physical memory, or less of it free. Nothing is said of what is not known.
void warn_of_physical_memory(std::uint64_t bytes, const PhysicalMemory& memory = physical_memory());

}  // namespace kelvara
