// The tests that the stress tester rotates through.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "multiply/instruction_levels.h"
#include "stress/stress_test.h"

namespace kelvara {

struct StressTestEntry {
    const StressTest* test;  // null where this processor cannot run it
    const char* code;        // three letters, the option on the command line
    const char* name;
    std::string components;  // "Primary Components": what of the processor the test works with
    bool cpu_intensive;
    bool memory_intensive;
};

// In menu order. Built once, before any test runs; every test is available on every processor.
std::span<const StressTestEntry> stress_tests();

// The primary components of a test of this code, with the kernels that run at an instruction-set level.
std::string primary_components(std::string_view code, qmp::InstructionLevel level);

}  // namespace kelvara
