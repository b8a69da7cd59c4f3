#include "constants/bbp/extractor.h"

#include <vector>

#include "constants/bbp/core_binder.h"
#include "constants/bbp/fraction.h"
#include "constants/bbp/sum_status.h"
#include "constants/bbp/term_sum.h"
#include "constants/bbp/terms.h"

namespace kelvara::bbp {

std::string extract_digits(const Settings& settings, qmp::Progress& progress, const qmp::CoreTable& cores,
                           qmp::ProcessorSystem& system) {
    const std::uint64_t count = terms_needed(settings.formula, settings.offset, settings.digits);
    const std::vector<Term> series = terms(settings.formula, settings.offset);
    CoreBinder binder(cores, system);
    ThreadPlan plan;
    plan.threads = settings.threads;
    if (settings.pin_threads) plan.bind = [&binder](std::uint64_t thread) { binder.bind(thread); };

    Fraction accumulator(settings.precision_words());
    bool refusal_told = false;
    for (std::size_t i = 0; i < series.size(); ++i) {
        progress.message(text_of(series[i]), 'G');
        progress.begin_step("Summing...  ", "Summing");
        {
            SumStatus status(progress, i + 1, series.size(), qmp::console::can_rewrite_lines());
            const Fraction sum =
                sum_of(series[i], count, settings.precision_words(), plan,
                       [&status](std::uint64_t done, std::uint64_t blocks) { status.show(done, blocks); });
            series[i].add ? accumulator.add(sum) : accumulator.subtract(sum);
        }
        progress.end_step();
        if (const auto core = binder.refused_core(); core && !refusal_told) {
            progress.message("Failed to set core affinity to core: " + std::to_string(*core), 'R');
            refusal_told = true;
        }
    }
    return accumulator.hexadecimal_digits();
}

}  // namespace kelvara::bbp
