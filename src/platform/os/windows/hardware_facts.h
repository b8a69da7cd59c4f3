// The facts of hardware.h, read out of what the system's calls return.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "platform/os/hardware.h"
#include "platform/os/windows/wmi.h"

namespace qmp::os {

// Of the version resource of the file that this system finds under the name; empty when it has none.
std::string os_version_of(const wchar_t* file);

// Of the records that GetLogicalProcessorInformationEx returns. A record that does not fit ends the count.
ProcessorCounts processor_counts_of(std::span<const std::byte> relations);

// Empty fields, and an empty list, when the service fails.
Motherboard motherboard_of(WmiService& service, SerialNumber serial_number);
std::vector<MemoryModule> memory_modules_of(WmiService& service);

}  // namespace qmp::os
