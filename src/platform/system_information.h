// The machine that the program runs on, as reports and validation files show it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/os/hardware.h"

namespace kelvara {

// Modules have serial numbers as well, which nothing here reads.
struct MemoryModule {
    std::string manufacturer;
    std::string part_number;
    std::uint64_t capacity = 0;  // bytes
};

// Texts are empty and numbers 0 where the machine does not tell.
struct SystemInformation {
    std::string os_version;
    std::string processor_name;
    std::uint64_t logical_cores = 0;
    std::uint64_t physical_cores = 0;
    std::uint64_t sockets = 0;
    std::uint64_t numa_nodes = 0;
    std::uint64_t base_frequency = 0;  // Hz
    std::uint64_t total_memory = 0;    // bytes built in
    std::uint64_t usable_memory = 0;   // bytes that the system has for programs and for itself
    std::string motherboard_manufacturer;
    std::string motherboard_model;
    std::string motherboard_version;
    // A sentence saying that it is suppressed, unless personal data is shown (startup_state.h).
    std::string motherboard_serial_number;
    std::vector<MemoryModule> memory_modules;
};

// Takes a noticeable time on some systems, so it is not for the middle of a computation. Never fails.
SystemInformation gather_system_info();

// As the system words a module; a capacity without meaning is 0.
MemoryModule memory_module_of(const qmp::os::MemoryModule& module);

// The lines after a computation, in dark teal.
void print_system_info(const SystemInformation& information);

// The block of a validation file, its last line empty. Lines end with CR LF.
std::string system_info_text(const SystemInformation& information);

}  // namespace kelvara
