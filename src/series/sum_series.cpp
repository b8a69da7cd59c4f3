#include "series/sum_series.h"

#include <algorithm>

#include "console/format.h"
#include "multiply/multiply.h"
#include "numbers/division_driver.h"
#include "numbers/newton.h"
#include "series/series_sizes.h"
#include "series/timed_step.h"

namespace qmp {

namespace {

// w Q +- P in memory.exact[0].
BigFloat combine(ParallelContext parallel, const PsrMemory& memory, BigFloatView P, BigFloatView Q,
                 std::uint64_t p, Word w, bool subtract) {
    BigFloat numerator(memory.exact[0].data(), memory.exact[0].words());
    if (w == 0) {
        numerator.set_BigFloat(parallel, P, p);
        return numerator;
    }
    BigFloatView first = Q;
    if (w != 1) {
        BigFloat product(memory.exact[1].data(), memory.exact[1].words());
        product.set_mul_uW(parallel, Q, w);
        first = product;
    }
    if (subtract) {
        numerator.set_sub(parallel, first, P, p);
    } else {
        numerator.set_add(parallel, first, P, p);
    }
    return numerator;
}

template <typename Series>
SeriesFraction sum(const Series& series, const ComputeContext& context, std::uint64_t p, double factor,
                   Word w, Word d, bool subtract, Word c = 1) {
    Progress* progress = context.progress;
    const TimedStep step(progress, "Summing Series...  ", "Summing Series");
    const PsrPlan plan = build_psr_plan(series, p, factor);
    progress->note("Summing: " + console::format_separated(plan.terms) + " terms", 'G');

    PsrMemory memory(context, series.SizesForPlan(plan, 0, context.parallel.tds));
    BigFloat P;
    BigFloat Q;
    B_PSR(series, context.multiply(memory.scratch), progress, plan, 0, memory, P, Q);
    BigFloat numerator;
    {
        ScopedLabel label(progress, "Finishing Series", 'P');
        if (c != 1) P.mul_uW(context.parallel, c);
        numerator = combine(context.parallel, memory, P, Q, p, w, subtract);
        if (d != 1) Q.mul_uW(context.parallel, d);
        numerator.truncate_to(p + big_float_extra_precision);
        Q.truncate_to(p + big_float_extra_precision);
    }
    memory.release_temporaries();
    return {std::move(memory), numerator, Q};
}

template <typename Series>
OwnedBigFloat value_of(const Series& series, const ComputeContext& context, std::uint64_t p, Word w, Word d,
                       std::int64_t scale) {
    OwnedBigFloat result;
    {
        const SeriesFraction fraction = sum(series, context, p, 1.0, w, d, series.alternating);
        result = divide(context, fraction.numerator, fraction.denominator, p);
    }
    result = relocate(context, std::move(result));
    BigFloat& value = result.number;
    if (scale < 0 && !value.is_zero()) value.sign ^= 1;
    const auto magnitude = static_cast<Word>(scale);
    value.mul_uW(context.parallel, scale < 0 ? Word{0} - magnitude : magnitude);
    return result;
}

}  // namespace

SeriesFraction sum_fraction(const BSS_P2B2_BBP& series, const ComputeContext& context, std::uint64_t p,
                            double factor, Word w, Word d, bool subtract, Word c) {
    return sum(series, context, p, factor, w, d, subtract, c);
}

SeriesFraction sum_fraction(const BSS_P2B3_Type0& series, const ComputeContext& context, std::uint64_t p,
                            double factor, Word w, Word d, bool subtract) {
    return sum(series, context, p, factor, w, d, subtract);
}

OwnedBigFloat SumSeries(const BSS_P2B2_BBP& series, const ComputeContext& context, std::uint64_t p, Word w,
                        Word d, std::int64_t scale) {
    return value_of(series, context, p, w, d, scale);
}

OwnedBigFloat SumSeries(const BSS_P2B3_Type0& series, const ComputeContext& context, std::uint64_t p, Word w,
                        Word d, std::int64_t scale) {
    return value_of(series, context, p, w, d, scale);
}

OwnedBigFloat relocate(const ComputeContext& context, OwnedBigFloat number) {
    OwnedBigFloat moved(context.region, number.number.AL);
    moved.number.set_BigFloat(context.parallel, number.number, number.number.L);
    return moved;
}

std::uint64_t memory_estimate(const BinarySplittingSeries& series, std::uint64_t p, std::uint64_t tasks,
                              double factor) {
    const PsrPlan plan = build_psr_plan(series, p, factor);
    const PlanSizes sizes = series.SizesForPlan(plan, 0, tasks);
    const std::uint64_t running = sizeof(Word) * sizes.running_words;
    const std::uint64_t exact = sizeof(Word) * sizes.exact_words;

    const std::uint64_t summing = sizes.scratch_bytes + 2 * (running + 2 * exact);
    const std::uint64_t s = p + estimate_spare_words;
    const std::uint64_t dividing =
        iPsize(s + 3, tasks) + 2 * (running + 4 * estimated_division_words(s) + exact);
    // What the division really holds: one exact and one running buffer, its result, and its own needs.
    const std::uint64_t needed = 2 * exact + running + sizeof(Word) * (p + 3) + divide_bytes(p, tasks);
    return std::max({summing, dividing, needed});
}

std::uint64_t sum_largest_product(const BinarySplittingSeries& series, std::uint64_t p, double factor) {
    return std::max(psr_largest_product(series, build_psr_plan(series, p, factor)),
                    newton_largest_product(p));
}

}  // namespace qmp
