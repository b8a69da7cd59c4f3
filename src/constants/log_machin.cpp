#include "constants/log_machin.h"

#include <algorithm>
#include <utility>

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

OwnedBigFloat LogMachin::compute(const ComputeContext& context) const {
    const auto terms = formula_.terms();
    OwnedBigFloat sum = sum_arccoth_term(context, terms.front().x, terms.front().c, precision_);
    for (const LogTerm& next : terms.subspan(1)) {
        sum = add_arccoth_term(context, std::move(sum), next.x, next.c, precision_);
    }
    return sum;
}

}  // namespace kelvara
