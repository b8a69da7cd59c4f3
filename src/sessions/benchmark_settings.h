// The benchmark: pi in memory, at one of a fixed set of sizes.
#pragma once

#include <cstdint>

#include "sessions/benchmark_sizes.h"
#include "sessions/ram_settings.h"

namespace kelvara {

class BenchmarkSettings {
  public:
    // Pi by its default algorithm, on the default allocator and framework; no size chosen yet.
    BenchmarkSettings();

    // Framework, allocator and task decomposition are the user's choice; constant and size are the
    // benchmark's.
    RamSettings& computation() { return computation_; }
    const RamSettings& computation() const { return computation_; }

    // An entry of either list of sizes; it is referred to from now on. Throws what a digit count out of range
    // throws.
    void set_size(const BenchmarkSize& size);
    // Null until one was chosen.
    const BenchmarkSize* size() const { return size_; }

    // What a size takes with the framework and task decomposition chosen so far, in bytes.
    std::uint64_t memory_needed(const BenchmarkSize& size) const;

    // The computation with its report. InvalidParametersException "No benchmark size selected." without a
    // size.
    void run();

  private:
    RamSettings computation_;
    const BenchmarkSize* size_ = nullptr;
};

}  // namespace kelvara
