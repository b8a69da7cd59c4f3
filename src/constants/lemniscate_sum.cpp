#include "constants/lemniscate_sum.h"

#include <algorithm>
#include <string>

#include "series/sum_series.h"

namespace kelvara {

using qmp::ComputeContext;
using qmp::OwnedBigFloat;
using Term = LemniscateFormula::Term;

namespace {

// "8 * ArcSinlemn( 1 / 2 )"
std::string label_of(const Term& term) {
    return std::to_string(term.scale) + " * ArcSinlemn( " + std::to_string(term.x.p) + " / " +
           std::to_string(term.x.q) + " )";
}

OwnedBigFloat sum_term(const ComputeContext& context, const Term& term, std::uint64_t p) {
    context.progress->heading(label_of(term));
    return SumSeries(ArcSinlemnSeries(term.x), context, p, 1, term.x.q,
                     term.scale * static_cast<std::int64_t>(term.x.p));
}

}  // namespace

LemniscateSum::LemniscateSum(std::uint64_t precision, std::uint64_t tasks, const LemniscateFormula& formula,
                             const AlgorithmInfo& names)
    : RamComputation(precision, tasks), formula_(formula), names_(names) {
    const auto estimate = [&](const Term& term) {
        return qmp::memory_estimate(ArcSinlemnSeries(term.x), precision_, tasks_);
    };
    // A value of so many words stays while the second term is summed.
    const std::uint64_t value = sizeof(qmp::Word) * precision_;
    const std::uint64_t spare = sizeof(qmp::Word) * qmp::estimate_spare_words;
    memory_estimate_ = estimate(formula.first) + value;
    memory_taken_ = std::max(estimate(formula.first), estimate(formula.second) + value + spare);
}

std::uint64_t LemniscateSum::largest_product() const {
    const auto longest = [&](const Term& term) {
        return qmp::sum_largest_product(ArcSinlemnSeries(term.x), precision_);
    };
    return std::max(longest(formula_.first), longest(formula_.second));
}

OwnedBigFloat LemniscateSum::compute(const ComputeContext& context) const {
    OwnedBigFloat sum;
    {
        const OwnedBigFloat first = sum_term(context, formula_.first, precision_);
        const OwnedBigFloat second = sum_term(context, formula_.second, precision_);
        sum = OwnedBigFloat(context.region, precision_ + qmp::big_float_extra_precision + 1);
        sum.number.set_add(context.parallel, first.number, second.number, precision_);
    }
    return relocate(context, std::move(sum));
}

}  // namespace kelvara
