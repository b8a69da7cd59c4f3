#include "constants/e_taylor.h"

#include <algorithm>

#include "console/format.h"
#include "multiply/multiply.h"
#include "numbers/division_driver.h"
#include "numbers/newton.h"
#include "series/bsr_engine.h"
#include "series/bsr_verify.h"
#include "series/series_e_taylor.h"
#include "series/sum_series.h"
#include "series/timed_step.h"

namespace kelvara {

using qmp::BigFloatView;
using qmp::CheckedWords;
using qmp::ExactFloat;
using qmp::Series_e_Taylor;
using qmp::Word;

namespace {

const Series_e_Taylor& series(bool negative) {
    static const Series_e_Taylor positive_series(false);
    static const Series_e_Taylor negative_series(true);
    return negative ? negative_series : positive_series;
}

std::uint64_t memory_estimate(const Series_e_Taylor& taylor, std::uint64_t p, std::uint64_t tasks) {
    const std::uint64_t s = p + qmp::estimate_spare_words;
    const qmp::BsrSizes sizes = BSR_sizes(taylor, s, 1, tasks);
    const std::uint64_t w = sizes.words;
    const std::uint64_t summing = sizes.scratch_bytes + 24 * w;
    // This figure counts the two parts of the fraction as w bytes each. It is the figure that screens show;
    // division_bytes() below is the bound.
    const std::uint64_t dividing =
        8 * s + 2 * (w + 8) + qmp::iPsize(p + 103, tasks) + 8 * qmp::estimated_division_words(s);
    return std::max(summing, dividing);
}

// What the division really holds: both parts of the fraction, its result, and its own needs.
std::uint64_t division_bytes(const Series_e_Taylor& taylor, std::uint64_t p, std::uint64_t tasks) {
    return 16 * BSR_sizes(taylor, p, 1, tasks).words + 8 * (p + 3) + qmp::divide_bytes(p, tasks);
}

BigFloatView as_float(const ExactFloat& x) {
    return {x.T, x.L, x.exp, 1};
}

}  // namespace

ETaylor::ETaylor(std::uint64_t precision, std::uint64_t tasks, bool negative)
    : RamComputation(precision, tasks), negative_(negative) {
    memory_estimate_ = kelvara::memory_estimate(series(negative), precision_, tasks_);
    memory_taken_ = division_bytes(series(negative), precision_, tasks_);
}

std::uint64_t ETaylor::largest_product() const {
    return std::max(2 * (precision_ / 2 + series(negative_).size_margin),
                    qmp::newton_largest_product(precision_));
}

qmp::OwnedBigFloat ETaylor::compute(const qmp::ComputeContext& context) const {
    const Series_e_Taylor& taylor = series(negative_);
    const std::uint64_t p = precision_;
    const std::uint64_t terms = taylor.TermsForPrecision(p);
    qmp::TimedStep step(context.progress, "Summing Series...  ", "Summing Series");
    context.progress->note("Summing: " + qmp::console::format_separated(terms) + " terms", 'G');

    qmp::OwnedBigFloat quotient;
    {
        const qmp::BsrSizes sizes = BSR_sizes(taylor, p, 1, context.parallel.tds);
        const CheckedWords P = context.allocate(sizes.words);
        const CheckedWords Q = context.allocate(sizes.words);
        CheckedWords T = context.allocate(sizes.words);
        CheckedWords scratch = context.allocate((sizes.scratch_bytes + sizeof(Word) - 1) / sizeof(Word));
        Series_e_Taylor::Buffers sum = {ExactFloat(P.data(), P.words()), ExactFloat(Q.data(), Q.words()),
                                        ExactFloat(T.data(), T.words())};
        BSR_block(taylor, context.multiply(scratch), context.progress, sum, 1, terms, 1);
        qcb_Verify_BSR(context.progress, 1, terms, {sum.data(), Series_e_Taylor::output_count},
                       context.parallel);
        scratch.reset();
        T.reset();
        step.end();

        // The series starts at the index 2: e = 2 + P/Q, or 1/e = P/Q, where the first two terms cancel.
        if (negative_) {
            quotient = divide(context, as_float(sum[1]), as_float(sum[0]), p);
        } else {
            quotient = divide(context, as_float(sum[0]), as_float(sum[1]), p);
            quotient.number.add_ip(2, 0);
        }
    }
    return relocate(context, std::move(quotient));
}

}  // namespace kelvara
