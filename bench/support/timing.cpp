#include "support/timing.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <thread>
#include <vector>

namespace bench {
namespace {

constexpr std::size_t fewest_rounds = 3;
constexpr std::size_t most_rounds = 15;
constexpr double shortest_round = 3e-3;

bool processor_time = false;

double now() {
    if (processor_time) return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Seconds of one run.
double round_of(const Run& run, std::uint64_t repetitions) {
    const double start = now();
    for (std::uint64_t i = 0; i < repetitions; ++i) run();
    return (now() - start) / static_cast<double>(repetitions);
}

// How often to repeat a run in one round. Warms the caches up as well.
std::uint64_t repetitions_of(const Run& run) {
    std::uint64_t repetitions = 1;
    while (round_of(run, repetitions) * static_cast<double>(repetitions) < shortest_round) repetitions *= 2;
    return repetitions;
}

struct Rival {
    const Run* run;
    std::uint64_t repetitions;
    std::vector<double> times;

    explicit Rival(const Run& r) : run(&r), repetitions(repetitions_of(r)) {}
    void measure() { times.push_back(round_of(*run, repetitions)); }
    double median() {
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }
};

void measure_in_turns(std::vector<Rival>& rivals, double budget, double rest) {
    const double start = now();
    for (std::size_t round = 0; round < most_rounds; ++round) {
        if (round >= fewest_rounds && now() - start > budget) break;
        for (Rival& rival : rivals) {
            if (rest > 0) {
                std::this_thread::sleep_for(std::chrono::duration<double>(rest));
                (*rival.run)();
            }
            rival.measure();
        }
    }
}

}  // namespace

void use_processor_time(bool on) {
    processor_time = on;
}

std::vector<double> measure(const std::vector<Run>& runs, double budget, double rest) {
    std::vector<Rival> rivals(runs.begin(), runs.end());
    measure_in_turns(rivals, budget, rest);
    std::vector<double> medians;
    for (Rival& rival : rivals) medians.push_back(rival.median());
    return medians;
}

Pair measure(const Run& ours, const Run& rival, double budget) {
    const std::vector<double> medians = measure(std::vector<Run>{ours, rival}, budget);
    return {medians[0], medians[1]};
}

double measure(const Run& ours, double budget) {
    return measure(std::vector<Run>{ours}, budget)[0];
}

}  // namespace bench
