#include "constants/log_machin.h"

#include <algorithm>

#include "constants/arccoth_series.h"
#include "series/sum_series.h"

namespace kelvara {

using qmp::ComputeContext;
using qmp::OwnedBigFloat;

LogMachin::LogMachin(std::uint64_t precision, std::uint64_t tasks, const LogFormula& formula,
                     const std::string& short_name, const std::string& long_name)
    : RamComputation(precision, tasks), formula_(formula), short_name_(short_name), long_name_(long_name) {
    const std::uint64_t running_sum = sizeof(qmp::Word) * (precision_ + qmp::estimate_spare_words);
    const auto needed = [&](const LogTerm& term) {
        return qmp::memory_estimate(ArcCothSeries(term.x), precision_, tasks_) + running_sum;
    };
    // The first argument is the smallest, and its series the longest. Other plans can still take some words
    // more.
    memory_estimate_ = needed(formula_.terms().front());
    for (const LogTerm& term : formula_.terms()) memory_taken_ = std::max(memory_taken_, needed(term));
}

std::uint64_t LogMachin::largest_product() const {
    std::uint64_t largest = 0;
    for (const LogTerm& term : formula_.terms()) {
        largest = std::max(largest, qmp::sum_largest_product(ArcCothSeries(term.x), precision_));
    }
    return largest;
}

OwnedBigFloat LogMachin::sum_term(const ComputeContext& context, const LogTerm& term) const {
    context.progress->message(std::to_string(term.c) + " ArcCoth( " + std::to_string(term.x) + " ):", 'w');
    return sum_arccoth(context, term.x, term.c, precision_);
}

OwnedBigFloat LogMachin::compute(const ComputeContext& context) const {
    const auto terms = formula_.terms();
    const std::uint64_t kept = precision_ + qmp::big_float_extra_precision;
    OwnedBigFloat sum = sum_term(context, terms.front());
    for (const LogTerm& next : terms.subspan(1)) {
        OwnedBigFloat both;
        {
            const OwnedBigFloat term = sum_term(context, next);
            both = OwnedBigFloat(context.region, kept + 1);
            both.number.set_add(context.parallel, sum.number, term.number, precision_);
            both.number.truncate_to(kept);
            sum = {};
        }
        sum = relocate(context, std::move(both));
    }
    return sum;
}

}  // namespace kelvara
