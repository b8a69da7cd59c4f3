#include "stress/continuous_run.h"

#include <algorithm>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "multiply/instruction_levels.h"
#include "platform/os/threads.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/timers.h"
#include "stress/floating_point_peak.h"
#include "stress/test_run.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

class ContinuousRun {
  public:
    ContinuousRun(const StressSettings& settings, std::span<const StressTestEntry> tests,
                  const StressMachine& machine)
        : settings_(settings), tests_(tests), machine_(machine), threads_(machine, settings) {}

    void reserve() {
        settings_.allocator->acquire_privileges();  // warns; the reservation does with what there is
        // A system grants no block without bytes; of one the tests say that it is too small.
        heap_ = qmp::allocate_large_heap(*settings_.allocator, "Reserving Working Memory...     ",
                                         std::max<std::uint64_t>(settings_.memory, 64), framework());
    }

    void measure_peak() {
        console::write("Measuring Floating-Point Peak... ", 'w');
        peak_ = measure_floating_point_peak(machine_, threads_);
        console::write(large_number(peak_), 'G');
        console::println(" multiply-adds/s (" + std::string(qmp::name_of(qmp::current_level())) + ")\n", 'w');
        console::reset_color();
    }

    struct Outcome {
        std::uint64_t run = 0;
        std::uint64_t errors = 0;
    };

    Outcome iterate() {
        print_heading();
        Outcome outcome;
        for (std::size_t i = 0; i < tests_.size(); ++i) {
            if (!settings_.enabled[i] || !tests_[i].test) continue;
            const StressReport report =
                run_stress_test(tests_[i], settings_, memory(), framework(), peak_, machine_, threads_);
            if (report.ran) ++outcome.run;
            outcome.errors += report.errors;
        }
        console::newline();
        return outcome;
    }

  private:
    void print_heading() {
        if (iteration_++ == 0) started_ = qmp::now(*machine_.clocks);
        const double seconds = qmp::seconds_between(qmp::now(*machine_.clocks), started_, *machine_.clocks);
        console::write("Iteration ", 'w');
        console::write(std::to_string(iteration_), 'G');
        console::write("  Total Elapsed Time: ", 'w');
        console::println(console::format_time(seconds), 'T');
        console::reset_color();
    }

    qmp::ParallelContext framework() {
        return {std::max<std::uint64_t>(qmp::os::active_processors(), 1), &pool_};
    }
    std::span<std::byte> memory() const {
        return {static_cast<std::byte*>(heap_.block->base), heap_.block->size};
    }

    const StressSettings& settings_;
    std::span<const StressTestEntry> tests_;
    const StressMachine& machine_;
    StressThreads threads_;
    qmp::PushPoolParallelizer pool_;
    qmp::LargeHeap heap_;
    double peak_ = 0;
    std::uint64_t iteration_ = 0;
    qmp::CounterTimePoint started_;
};

}  // namespace

StressEnd run_stress_tests(const StressSettings& settings, std::span<const StressTestEntry> tests,
                           const StressMachine& machine, std::uint64_t most_iterations) {
    console::println("Starting Continuous Stress-Test...\n", 'w');
    ContinuousRun run(settings, tests, machine);
    run.reserve();
    run.measure_peak();
    for (std::uint64_t i = 0; most_iterations == 0 || i < most_iterations; ++i) {
        const ContinuousRun::Outcome outcome = run.iterate();
        if (outcome.run == 0) {
            console::println("Nothing was run. Stopping test...", 'R');
            console::reset_color();
            return StressEnd::nothing_run;
        }
        if (outcome.errors > 0 && settings.stop_on_error) {
            console::println("Errors encountered. Stopping test...", 'R');
            console::reset_color();
            return StressEnd::errors;
        }
    }
    return StressEnd::enough;
}

}  // namespace kelvara
