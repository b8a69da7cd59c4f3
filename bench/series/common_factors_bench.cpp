// What it costs and saves to take common factors out of merges: the same ranges summed without it and with
// it, on several levels. One task; the least of several alternating times.
//
//   common_factors_bench [terms of the range summed] [its first index] [repetitions]
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "constants/arccoth_series.h"
#include "constants/catalan_lupas.h"
#include "constants/lemniscate_series.h"
#include "constants/pi_formulas.h"
#include "constants/zeta3_series.h"
#include "platform/timers.h"
#include "series/bsr_engine.h"
#include "series/bss_p2b3_type0.h"
#include "series/psr_plan.h"
#include "series/series_sizes.h"
#include "support/workspace.h"

namespace {

using qmp::CommonFactors;

// What to take out, and what came of it.
struct Candidate {
    CommonFactors::Levels levels;  // longest 0: nothing
    double seconds = INFINITY;
    double prepared = INFINITY;  // seconds, of it before the range is summed
    std::uint64_t words = 0;
};

void measure(const std::string& name, const qmp::BSS_P2B3_Type0& series, std::uint64_t a, std::uint64_t terms,
             int repetitions) {
    const std::uint64_t b = a + terms;
    const std::uint64_t words = qmp::BSR_sizes(series, qmp::psr_size(series, a, b), 0, 1).words;
    const bench::Workspace workspace(words, 1);
    const bench::AlignedWords memory(4 * words);
    std::vector<Candidate> candidates = {{{64, 1024, 0}},     {{64, 1024, 1024}},  {{32, 1024, 1024}},
                                         {{128, 1024, 1024}}, {{64, 4096, 4096}},  {{64, 512, 8192}},
                                         {{64, 1024, 16384}}, {{64, 2048, 16384}}, {{64, 16384, 16384}}};
    for (int i = 0; i < repetitions; i++) {
        for (Candidate& candidate : candidates) {
            CommonFactors factors(series.term_factors(), b, candidate.levels);
            qmp::BSS_P2B3_Type0::Buffers out;
            for (std::size_t j = 0; j < out.size(); j++)
                out[j] = qmp::ExactFloat(memory.data() + j * words, words);
            const qmp::CounterTimePoint start = qmp::now();
            factors.prepare(workspace.context(), terms);
            const double prepared = qmp::seconds_between(qmp::now(), start);
            qmp::BSR_serial(series, workspace.context(), out, a, b,
                            candidate.levels.longest ? qmp::RangeFactors(&factors) : qmp::RangeFactors());
            candidate.seconds = std::min(candidate.seconds, qmp::seconds_between(qmp::now(), start));
            candidate.prepared = std::min(candidate.prepared, prepared);
            candidate.words = out[1].L;
        }
    }
    for (const Candidate& candidate : candidates) {
        const auto ns_per_term = [&](double seconds) { return seconds / static_cast<double>(terms) * 1e9; };
        std::printf("| %s | %llu | %llu, %llu, %llu | %llu | %.1f | %.1f | %.3f | %.3f |\n", name.c_str(),
                    static_cast<unsigned long long>(terms),
                    static_cast<unsigned long long>(candidate.levels.shortest),
                    static_cast<unsigned long long>(candidate.levels.every),
                    static_cast<unsigned long long>(candidate.levels.longest),
                    static_cast<unsigned long long>(candidate.words), ns_per_term(candidate.seconds),
                    ns_per_term(candidate.prepared), candidate.seconds / candidates[0].seconds,
                    static_cast<double>(candidate.words) / static_cast<double>(candidates[0].words));
    }
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    const auto argument = [&](int i, std::uint64_t standard) {
        return argc > i ? std::strtoull(argv[i], nullptr, 10) : standard;
    };
    const std::uint64_t terms = argument(1, 16384);
    const std::uint64_t a = argument(2, 1000000);
    const int repetitions = static_cast<int>(argument(3, 10));
    std::printf(
        "| series | terms | halves from, each level to, every other to | words of Q | ns a term | of it "
        "prepared |"
        " time, to without | Q, to without |\n|---|---|---|---|---|---|---|---|\n");
    measure("pi, Chudnovsky", kelvara::pi_formula(0).series, a, terms, repetitions);
    measure("ArcCoth(26)", kelvara::ArcCothSeries(26), a, terms, repetitions);
    measure("Zeta(3), long", kelvara::zeta3_formula(0).series, a, terms, repetitions);
    measure("Zeta(3), short", kelvara::zeta3_formula(1).series, a, terms, repetitions);
    measure("Catalan, Lupas", kelvara::catalan_lupas_formula().series, a, terms, repetitions);
    measure("ArcSinlemn(7/23)", kelvara::ArcSinlemnSeries({7, 23}), a, terms, repetitions);
    return 0;
}
