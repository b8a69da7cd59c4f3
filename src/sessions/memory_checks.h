// What the menus say about a figure of memory, in bytes.
#pragma once

#include <cstdint>

namespace kelvara {

// False, after a line that says so, for 2^63 bytes or more.
bool fits_address_space(std::uint64_t bytes);

// Warns when the machine has less physical memory, or less of it free. Nothing is said where the system
// does not tell.
void warn_of_physical_memory(std::uint64_t bytes);

}  // namespace kelvara
