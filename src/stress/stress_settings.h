// What the stress tester is to do.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/memory/basic_allocator.h"

namespace kelvara {

enum class StressMode {
    local,   // every thread on memory of its own, bound to a core
    global,  // one memory, with tables that all threads share; no thread is bound
};

struct StressSettings {
    static constexpr std::uint64_t most_threads = 65536;  // that the menu takes

    // The system's processors and most of the memory that it has free; every test enabled.
    StressSettings();

    StressMode mode = StressMode::local;
    std::uint64_t threads;  // at least 1
    std::unique_ptr<qmp::BasicAllocator> allocator;
    std::uint64_t memory;  // bytes
    std::uint64_t seconds_per_test = 120;
    bool stop_on_error = true;
    std::vector<bool> enabled;  // by the test's number in the catalogue

    bool any_enabled() const;
    void enable_all(bool on);
    // Of one thread in Local mode.
    std::uint64_t memory_per_thread() const { return memory / threads; }
};

}  // namespace kelvara
