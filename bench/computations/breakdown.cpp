#include "breakdown.h"

#include <cstdio>

#include "console/format.h"
#include "multiply/multiply.h"
#include "series_profile.h"
#include "support/timing.h"
#include "support/workspace.h"

namespace bench {
namespace {

// Parts of a phase below this share of the whole are left out.
constexpr double shown_share = 0.001;

// Seconds of one product of p x p words with as many tasks as the computation had.
double product_seconds(std::uint64_t p, std::uint64_t tasks) {
    constexpr double budget = 1.0;
    const Workspace workspace(2 * p, tasks);
    const Words a = random_words(p, 1);
    const Words b = random_words(p, 2);
    const AlignedWords product(2 * p);
    return measure([&] { qmp::multiply(workspace.context(), product.data(), a.data(), p, b.data(), p); },
                   budget);
}

}  // namespace

void print_phases(const Measured& measured) {
    const Figures& f = measured.result.median;
    std::printf("\nPhases: %s.\n\n| phase | seconds | of all | U |\n|---|---|---|---|\n",
                measured.title().c_str());
    const auto line = [&](const std::string& name, double seconds) {
        std::printf("| %s | %.4f | %.1f %% | %.3f |\n", name.c_str(), seconds, 100 * seconds / f.seconds,
                    seconds / measured.result.median.unit);
    };
    double rest = f.seconds;
    for (const StepTimes::Step& step : f.steps.steps()) {
        line("**" + step.name + "**", step.seconds);
        rest -= step.seconds;
        if (step.parts.size() < 2) continue;
        for (const StepTimes::Part& part : step.parts) {
            if (part.seconds >= shown_share * f.seconds) line("- " + part.name, part.seconds);
        }
    }
    line("between the steps", rest);
    line("**all**", f.seconds);
    std::fflush(stdout);
}

void print_newton(const Measured& measured) {
    const std::uint64_t p = measured.result.precision;
    const double product = product_seconds(p, measured.computation.tasks);
    std::printf(
        "\nIn products of p x p words, p = %s, each %.4f s: %s.\n\n| phase | seconds | products "
        "|\n|---|---|---|\n",
        qmp::console::format_separated(p).c_str(), product, measured.title().c_str());
    for (const char* step : {"Division", "InvSqrt", "Final Multiply"}) {
        const double seconds = measured.result.median.steps.seconds(step);
        if (seconds > 0) std::printf("| %s | %.4f | %.2f |\n", step, seconds, seconds / product);
    }
    std::fflush(stdout);
}

void print_series(const Measured& measured) {
    std::vector<WorkKind> kinds = profile_series(measured.computation, measured.result.precision);
    if (kinds.empty()) return;
    const StepTimes& steps = measured.result.median.steps;
    const char* series_step =
        measured.computation.constant == "gamma" ? "Summing Series A and B" : "Summing Series";
    // The profile sums the blocks only; what the computation itself did with them is added.
    for (const char* part : {StepTimes::folds, StepTimes::finishing}) {
        kinds.push_back({part, 0, steps.seconds(series_step, part)});
    }
    double all = 0;
    for (const WorkKind& kind : kinds) all += kind.seconds;
    std::printf(
        "\nThe series by kind of work: %s.\nThe blocks were summed once more for this: %.3f s in all, where "
        "the computation took %.3f s.\n\n"
        "| work | how often | seconds | share |\n|---|---|---|---|\n",
        measured.title().c_str(), all, steps.seconds(series_step));
    for (const WorkKind& kind : kinds) {
        if (kind.seconds == 0) continue;
        std::printf("| %s | %s | %.4f | %.1f %% |\n", kind.name.c_str(),
                    kind.count ? qmp::console::format_separated(kind.count).c_str() : "", kind.seconds,
                    100 * kind.seconds / all);
    }
    std::fflush(stdout);
}

}  // namespace bench
