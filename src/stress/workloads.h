// The work of all threads of a test, in the memory that they have.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "multiply/twiddle_set.h"
#include "platform/parallel/parallel_context.h"
#include "stress/stress_settings.h"
#include "stress/workload.h"

namespace kelvara {

// The longest products that the settings' memory and threads allow; no units when it is too little. In Local
// mode every thread has tables of its own. Warns of a test whose scratch does not grow with its length.
StressTestSize stress_test_size(const StressTest& test, const StressSettings& settings);

class StressWorkloads {
  public:
    // `memory` holds what the settings say, 64-byte aligned, and outlives the object, as does the test.
    StressWorkloads(const StressTest& test, const StressTestSize& size, const StressSettings& settings,
                    std::span<std::byte> memory);

    // First, once: the tables that threads share, if they do.
    void prepare_shared(qmp::ParallelContext framework);
    // Then of every thread: what is its own. After that its products; see StressWorkload. From many threads.
    void prepare(std::uint64_t thread);
    bool step(std::uint64_t thread) { return threads_[thread].work->step(); }

  private:
    struct Thread {
        std::optional<qmp::TwiddleSet> tables;
        std::optional<StressWorkload> work;
    };

    std::uint64_t bytes_of_thread() const { return size_.part_bytes + (local_ ? size_.table_bytes : 0); }
    void build_tables(std::optional<qmp::TwiddleSet>& tables, std::byte* memory,
                      qmp::ParallelContext parallel) const;

    const StressTest& test_;
    StressTestSize size_;
    bool local_;
    std::span<std::byte> memory_;
    std::optional<qmp::TwiddleSet> shared_tables_;
    std::vector<Thread> threads_;
};

}  // namespace kelvara
