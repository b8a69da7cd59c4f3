#include "stress/test_run.h"

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "console/console.h"
#include "console/format.h"
#include "multiply/twiddle_set.h"
#include "platform/timers.h"
#include "stress/running_line.h"
#include "stress/workload.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

// The workloads of all threads in the memory that they have.
class Workloads {
  public:
    Workloads(const StressTest& test, const StressTestSize& size, const StressSettings& settings,
              std::span<std::byte> memory)
        : test_(test),
          size_(size),
          local_(settings.mode == StressMode::local),
          memory_(memory),
          threads_(settings.threads) {}

    // Of thread i; from many threads at a time, once shared tables are there.
    void prepare(std::uint64_t i) {
        Thread& thread = threads_[i];
        std::byte* part = memory_.data() + i * bytes_of_thread() + (local_ ? 0 : size_.table_bytes);
        if (local_) {
            build_tables(thread.tables, part, qmp::ParallelContext::sequential());
            part += size_.table_bytes;
        }
        const auto& tables = local_ ? thread.tables : shared_tables_;
        thread.work.emplace(test_, size_, part, tables ? &*tables : nullptr);
        thread.work->prepare();
    }
    void prepare_shared(qmp::ParallelContext framework) {
        if (!local_) build_tables(shared_tables_, memory_.data(), framework);
    }
    bool step(std::uint64_t i) { return threads_[i].work->step(); }

  private:
    struct Thread {
        std::optional<qmp::TwiddleSet> tables;
        std::optional<StressWorkload> work;
    };

    std::uint64_t bytes_of_thread() const { return size_.part_bytes + (local_ ? size_.table_bytes : 0); }
    void build_tables(std::optional<qmp::TwiddleSet>& tables, std::byte* memory,
                      qmp::ParallelContext parallel) const {
        const TwiddleReach reach = test_.twiddle_reach(size_.units);
        if (reach.product_words == 0) return;
        tables.emplace(memory, size_.table_bytes, reach.product_words, parallel, reach.fft_words);
    }

    const StressTest& test_;
    StressTestSize size_;
    bool local_;
    std::span<std::byte> memory_;
    std::optional<qmp::TwiddleSet> shared_tables_;
    std::vector<Thread> threads_;
};

// What the threads of a running test know of each other.
class Progress {
  public:
    Progress(const StressSettings& settings, qmp::ClockSystem& clocks)
        : clocks_(clocks), limit_(settings.seconds_per_test), started_(qmp::now(clocks)) {}

    double seconds() const { return qmp::seconds_between(qmp::now(clocks_), started_, clocks_); }
    bool is_over() const { return stopped_ || seconds() >= static_cast<double>(limit_); }
    void stop() { stopped_ = true; }
    void count_product() { products_.fetch_add(1, std::memory_order_relaxed); }
    void count_error() { ++errors_; }
    std::uint64_t products() const { return products_.load(std::memory_order_relaxed); }
    std::uint64_t errors() const { return errors_; }

    std::string text() const {
        return "  " + console::format_fixed(seconds(), 0) + " of " + console::format_separated(limit_) +
               " seconds, " + console::format_separated(products()) + " products";
    }

  private:
    qmp::ClockSystem& clocks_;
    std::uint64_t limit_;
    qmp::CounterTimePoint started_;
    std::atomic<bool> stopped_ = false;
    std::atomic<std::uint64_t> products_ = 0;
    std::atomic<std::uint64_t> errors_ = 0;
};

void run_until_over(Workloads& workloads, std::uint64_t thread, Progress& progress, RunningLine& line) {
    do {
        const bool right = workloads.step(thread);
        progress.count_product();
        if (right) continue;
        progress.count_error();
        line.error("Checksum Mismatch");
        progress.stop();
    } while (!progress.is_over());
}

StressTestSize size_for(const StressTest& test, const StressSettings& settings) {
    const bool local = settings.mode == StressMode::local;
    const std::uint64_t units = local ? largest_units(test, 1, settings.memory_per_thread() / 64 * 64)
                                      : largest_units(test, settings.threads, settings.memory);
    return units == 0 ? StressTestSize{} : stress_test_size(test, units);
}

}  // namespace

StressReport run_stress_test(const StressTestEntry& entry, const StressSettings& settings,
                             std::span<std::byte> memory, qmp::ParallelContext framework, double peak,
                             const StressMachine& machine, StressThreads& threads) {
    StressReport report;
    report.threads = settings.threads;
    report.size = size_for(*entry.test, settings);
    if (report.size.operand_words() == 0) {
        print_insufficient_memory(entry);
        return report;
    }

    console::println("Preparing " + std::string(entry.name) + " Test...", 'w');
    Workloads workloads(*entry.test, report.size, settings, memory);
    workloads.prepare_shared(framework);
    threads.run(settings.threads, [&](std::uint64_t i) { workloads.prepare(i); });

    Progress progress(settings, *machine.clocks);
    {
        RunningLine line(
            "Running Test " + std::string(entry.name), [&progress] { return progress.text(); },
            machine.start_thread);
        threads.run(
            settings.threads, [&](std::uint64_t i) { run_until_over(workloads, i, progress, line); },
            [&] { progress.stop(); });
        report.seconds = progress.seconds();
    }
    report.ran = true;
    report.products = progress.products();
    report.errors = progress.errors();
    print_report(entry, report, peak);
    return report;
}

}  // namespace kelvara
