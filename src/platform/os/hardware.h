// What the system knows about the machine it runs on.
//
// Nothing here fails: a text that cannot be had is empty, a number 0, a list empty. Texts are UTF-8 without
// blanks around them. Some answers take a noticeable time (Windows starts its management service for them).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qmp::os {

// "Windows 10.0 Build 19041", "Linux 6.1.0-18-amd64 (Debian GNU/Linux 12 (bookworm))".
std::string os_version();

// Of the processors that the system runs, whether or not this process may use them.
struct ProcessorCounts {
    std::uint32_t logical_cores = 0;
    std::uint32_t physical_cores = 0;
    std::uint32_t sockets = 0;
};
ProcessorCounts processor_counts();

// The processor's frequency without turbo, in Hz.
std::uint64_t base_frequency();

// What is built in, in bytes: the system keeps some of it from programs (memory.h has what is left).
std::uint64_t installed_memory();

struct Motherboard {
    std::string manufacturer;
    std::string model;
    std::string version;
    std::string serial_number;
};
// The serial number tells one person's machine from all others: it is not even read unless asked for.
enum class SerialNumber { leave_out, read };
Motherboard motherboard(SerialNumber serial_number);

struct MemoryModule {
    std::string manufacturer;
    std::string part_number;
    // Bytes, or a count and a unit: "17179869184", "16384M".
    std::string capacity;
};
// The modules that are plugged in.
std::vector<MemoryModule> memory_modules();

}  // namespace qmp::os
