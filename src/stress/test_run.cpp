#include "stress/test_run.h"

#include <atomic>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "platform/timers.h"
#include "stress/running_line.h"
#include "stress/workloads.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

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

void run_until_over(StressWorkloads& workloads, std::uint64_t thread, Progress& progress, RunningLine& line) {
    do {
        const bool right = workloads.step(thread);
        progress.count_product();
        if (right) continue;
        progress.count_error();
        line.error("Checksum Mismatch");
        progress.stop();
    } while (!progress.is_over());
}

}  // namespace

StressReport run_stress_test(const StressTestEntry& entry, const StressSettings& settings,
                             std::span<std::byte> memory, qmp::ParallelContext framework, double peak,
                             const StressMachine& machine, StressThreads& threads) {
    StressReport report;
    report.threads = settings.threads;
    report.size = stress_test_size(*entry.test, settings);
    if (report.size.operand_words() == 0) {
        print_insufficient_memory(entry);
        return report;
    }

    console::println("Preparing " + std::string(entry.name) + " Test...", 'w');
    StressWorkloads workloads(*entry.test, report.size, settings, memory);
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
