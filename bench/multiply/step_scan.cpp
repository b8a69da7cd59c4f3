#include "step_scan.h"

#include <algorithm>
#include <cstdio>

#include "multiply/instruction_levels.h"
#include "multiply/multiply.h"
#include "support/timing.h"
#include "support/workspace.h"

namespace bench {
namespace {

constexpr std::uint64_t shortest = 100000;
constexpr std::uint64_t longest = 10000000;
constexpr double step = 1.08;

struct Point {
    std::uint64_t n;
    double time;
};

double time_of(const Workspace& workspace, std::uint64_t n, double budget) {
    const Words a = random_words(n, n), b = random_words(n, n + 1);
    Words product(2 * n);
    return measure([&] { qmp::multiply(workspace.context(), product.data(), a.data(), n, b.data(), n); },
                   budget);
}

// Times in seconds of every size that the dispatch reaches.
std::vector<Point> scan(std::uint64_t tasks, double budget) {
    const std::uint64_t last = std::min(longest, reach() / 2);
    std::vector<Point> points;
    if (last < shortest) return points;
    const Workspace workspace(2 * last, tasks);
    // The first sizes would pay for the memory's first use.
    time_of(workspace, last, budget);
    for (auto n = static_cast<double>(shortest); n <= static_cast<double>(last); n *= step) {
        const auto words = static_cast<std::uint64_t>(n);
        points.push_back({words, time_of(workspace, words, budget)});
        std::printf("%10llu %14.3f %14.3f\n", static_cast<unsigned long long>(words),
                    points.back().time * 1e3, points.back().time * 1e9 / static_cast<double>(2 * words));
        std::fflush(stdout);
    }
    return points;
}

void print_largest(const std::vector<Point>& points) {
    if (points.size() < 2) {
        std::printf("not reached\n");
        return;
    }
    double slower = 0, faster = 0;
    std::uint64_t slower_at = 0, faster_at = 0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const double ratio = points[i].time / points[i + 1].time;
        if (ratio > slower) slower = ratio, slower_at = points[i].n;
        if (1 / ratio > faster) faster = 1 / ratio, faster_at = points[i].n;
    }
    std::printf("largest time / time of the next size: %.3f, at %llu words\n", slower,
                static_cast<unsigned long long>(slower_at));
    std::printf("largest time of the next size / time: %.3f, at %llu words\n", faster,
                static_cast<unsigned long long>(faster_at));
}

}  // namespace

void print_steps(const Options& options) {
    qmp::force_level(options.levels.empty() ? "" : options.levels.front());
    for (std::uint64_t tasks : options.tasks) {
        std::printf("\nSteps of n x n products, %s, %llu task%s\n", qmp::name_of(qmp::current_level()),
                    static_cast<unsigned long long>(tasks), tasks == 1 ? "" : "s");
        std::printf("         n     Kelvara ms    ns per word\n");
        // A tenth of the budget: there are sixty figures, and their neighbours check them.
        print_largest(scan(tasks, options.budget / 10));
    }
    qmp::force_level("");
}

}  // namespace bench
