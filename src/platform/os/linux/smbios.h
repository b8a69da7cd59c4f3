// The table in which the firmware describes the machine (System Management BIOS, DMTF DSP0134).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/os/hardware.h"

namespace qmp::os {

// The memory devices (structures of type 17) that have a module in them, in the order of the table. A size
// that the firmware does not know leaves the capacity empty. Firmware tables are often wrong: a structure
// that does not fit the table ends the reading, and what was found before it stays.
std::vector<MemoryModule> memory_modules_in_smbios(std::span<const std::uint8_t> table);

}  // namespace qmp::os
