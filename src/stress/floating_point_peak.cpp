#include "stress/floating_point_peak.h"

#include <algorithm>
#include <array>
#include <atomic>

#include "multiply/instruction_levels.h"
#include "platform/timers.h"
#include "stress/kernels/peak.h"

namespace kelvara {
namespace {

constexpr std::uint64_t rounds_at_a_time = 1 << 14;
// The processor raises its clock and switches wide units on when they are asked for.
constexpr double seconds_to_warm_up = 0.02;
// Of several intervals the best counts: others may have the processor for some of them.
constexpr int intervals = 10;
constexpr double seconds_of_interval = 0.003;

class Stopwatch {
  public:
    explicit Stopwatch(qmp::ClockSystem& clocks) : clocks_(clocks), started_(qmp::now(clocks)) {}
    double seconds() const { return qmp::seconds_between(qmp::now(clocks_), started_, clocks_); }

  private:
    qmp::ClockSystem& clocks_;
    qmp::CounterTimePoint started_;
};

// Of the calling thread.
double measure_thread(const PeakKernel& kernel, qmp::ClockSystem& clocks) {
    volatile double result = 0;
    const Stopwatch warming_up(clocks);
    while (warming_up.seconds() < seconds_to_warm_up) result = kernel.run(rounds_at_a_time);
    double best = 0;
    for (int i = 0; i < intervals; ++i) {
        const Stopwatch measuring(clocks);
        double rounds = 0;
        double seconds = 0;
        while (seconds < seconds_of_interval) {
            result = kernel.run(rounds_at_a_time);
            rounds += static_cast<double>(rounds_at_a_time);
            seconds = measuring.seconds();
        }
        best = std::max(best, rounds * kernel.operations / seconds);
    }
    static_cast<void>(result);
    return best;
}

}  // namespace

const PeakKernel& current_peak_kernel() {
    // In the order of qmp::InstructionLevel.
    constexpr std::array<const PeakKernel*, qmp::instruction_level_count> kernels = {
        &peak_avx512, &peak_avx2, &peak_fma4, &peak_sse2, &peak_scalar};
    return *kernels[static_cast<std::size_t>(qmp::current_level())];
}

double measure_floating_point_peak(const StressMachine& machine, StressThreads& threads) {
    const PeakKernel& kernel = current_peak_kernel();
    // Threads beyond the processors would only take turns.
    const std::uint64_t count = std::min(threads.count(), std::max<std::uint64_t>(machine.cores, 1));
    std::atomic<double> sum = 0;
    threads.run(count, [&](std::uint64_t) {
        const double rate = measure_thread(kernel, *machine.clocks);
        double before = sum.load();
        while (!sum.compare_exchange_weak(before, before + rate)) {
        }
    });
    return sum;
}

}  // namespace kelvara
