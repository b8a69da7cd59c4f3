// The facts of hardware.h, read from the files of a system whose root folder is given, without a slash at
// its end: "" for the running one, another for tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/os/hardware.h"

namespace qmp::os {

std::string os_version_of(const std::string& root);
ProcessorCounts processor_counts_of(const std::string& root);
std::uint64_t base_frequency_of(const std::string& root);
// 0 where the kernel does not show its blocks of memory.
std::uint64_t memory_blocks_of(const std::string& root);
Motherboard motherboard_of(const std::string& root, SerialNumber serial_number);
std::vector<MemoryModule> memory_modules_of(const std::string& root);

}  // namespace qmp::os
