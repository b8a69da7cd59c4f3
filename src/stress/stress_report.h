// What came of one test, and what is printed of it.
#pragma once

#include <cstdint>
#include <string>

#include "stress/catalogue.h"
#include "stress/sizing.h"

namespace kelvara {

struct StressReport {
    bool ran = false;  // there was memory enough
    StressTestSize size;
    std::uint64_t threads = 0;
    std::uint64_t products = 0;  // of all threads
    std::uint64_t errors = 0;
    double seconds = 0;
};

// "1.23 billion"
std::string large_number(double value);

void print_insufficient_memory(const StressTestEntry& entry);
// `peak`: floating-point operations per second that the threads showed at the start; 0 when it is not known.
void print_report(const StressTestEntry& entry, const StressReport& report, double peak);

}  // namespace kelvara
