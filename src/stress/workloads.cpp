#include "stress/workloads.h"

#include "console/console.h"

namespace kelvara {

StressTestSize stress_test_size(const StressTest& test, const StressSettings& settings) {
    const bool local = settings.mode == StressMode::local;
    const UnitsFound found = local ? find_largest_units(test, 1, settings.memory_per_thread() / 64 * 64)
                                   : find_largest_units(test, settings.threads, settings.memory);
    if (!found.scratch_increases) {
        qmp::console::print_warning("Inconsistency: iPsize() is not an increasing function.");
    }
    return found.units == 0 ? StressTestSize{} : stress_test_size(test, found.units);
}

StressWorkloads::StressWorkloads(const StressTest& test, const StressTestSize& size,
                                 const StressSettings& settings, std::span<std::byte> memory)
    : test_(test),
      size_(size),
      local_(settings.mode == StressMode::local),
      memory_(memory),
      threads_(settings.threads) {}

void StressWorkloads::prepare_shared(qmp::ParallelContext framework) {
    if (!local_) build_tables(shared_tables_, memory_.data(), framework);
}

void StressWorkloads::prepare(std::uint64_t i) {
    Thread& thread = threads_[i];
    // Tables that are shared come first.
    std::byte* part = memory_.data() + i * bytes_of_thread() + (local_ ? 0 : size_.table_bytes);
    if (local_) {
        build_tables(thread.tables, part, qmp::ParallelContext::sequential());
        part += size_.table_bytes;
    }
    const auto& tables = local_ ? thread.tables : shared_tables_;
    thread.work.emplace(test_, size_, part, tables ? &*tables : nullptr);
    thread.work->prepare();
}

void StressWorkloads::build_tables(std::optional<qmp::TwiddleSet>& tables, std::byte* memory,
                                   qmp::ParallelContext parallel) const {
    const TwiddleReach reach = test_.twiddle_reach(size_.units);
    if (reach.product_words == 0) return;
    tables.emplace(memory, size_.table_bytes, reach.product_words, parallel, reach.fft_words);
}

}  // namespace kelvara
