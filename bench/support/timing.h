// Times of two rivals, measured in turns.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace bench {

using Run = std::function<void()>;

// Which clock: the wall's, or the process's own time on the processors.
void use_processor_time(bool on);

// Seconds.
struct Pair {
    double ours;
    double rival;
};

// The medians of several rounds, in which the two alternate, so that a change of the processor's clock meets
// both. A round repeats a short run for some milliseconds. About `budget` seconds in all, but three rounds
// at least and 15 at most.
Pair measure(const Run& ours, const Run& rival, double budget);
double measure(const Run& ours, double budget);
// Any number of rivals. `rest` seconds of sleep and one run that does not count precede each round, so that
// threads which a rival left waiting awake have gone to sleep.
std::vector<double> measure(const std::vector<Run>& runs, double budget, double rest = 0);

}  // namespace bench
