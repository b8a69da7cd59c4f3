#include "constants/brent_mcmillan.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "console/console.h"
#include "console/format.h"
#include "constants/arccoth_series.h"
#include "errors/exception.h"
#include "multiply/multiply.h"
#include "numbers/division_driver.h"
#include "numbers/newton.h"
#include "series/psr_evaluate.h"
#include "series/series_constants.h"
#include "series/series_sizes.h"
#include "series/sum_series.h"
#include "series/timed_step.h"

namespace kelvara {

namespace console = qmp::console;

using qmp::BigFloat;
using qmp::BigFloatView;
using qmp::CheckedWords;
using qmp::ComputeContext;
using qmp::OwnedBigFloat;
using qmp::PlanSizes;
using qmp::ScopedLabel;
using qmp::series_constants;
using qmp::TimedStep;
using qmp::Word;

namespace {

constexpr const char* correction_title = "\nSumming Series C...  ";
constexpr const char* correction_status = "Summing Series C";
constexpr const char* finishing_label = "Finishing Series  ";

// More blocks than this would take longer to plan than to wait for. Plans from psr_block_warning on are
// warned about.
constexpr double largest_plan = 1e6;

// ln 2 = 18 ArcCoth(26) - 2 ArcCoth(4801) + 8 ArcCoth(8749).
struct LogarithmTerm {
    std::int64_t c;
    std::uint64_t x;
};
constexpr LogarithmTerm logarithm_of_2[] = {{18, 26}, {-2, 4801}, {8, 8749}};

double four_n(std::int32_t exponent) {
    return std::ldexp(4.0, exponent);
}

double precision_units(std::uint64_t p) {
    return static_cast<double>(p) * series_constants().ln_word;
}

// The words of the correction: it is exp(-4n) of A/B, and its own series ends there too.
std::uint64_t correction_words(std::uint64_t p, std::int32_t exponent) {
    const double reached = four_n(exponent) * series_constants().words_per_unit;
    const double missing = static_cast<double>(p) - reached;
    return missing < 0 ? 0 : static_cast<std::uint64_t>(std::llrint(std::min(reached, missing) + 0.5));
}

// A plan of blocks of p words each, if it can be made.
qmp::PsrPlan plan_of(const qmp::Series_EulerGamma_BM_AB& series, std::uint64_t p) {
    const auto terms = static_cast<double>(series.TermsForPrecision(p));
    const double blocks = series.SizeAtIndex(terms) / precision_units(p);
    if (!(blocks < largest_plan)) {
        throw qmp::InvalidParametersException(
            "", "The parameter n = 2^" + std::to_string(series.exponent()) + " is too large for this size.");
    }
    return qmp::build_psr_plan(series, p, 1.0);
}

// Numerator and denominator share one exact buffer pair while they are divided.
std::uint64_t shown_estimate(const PlanSizes& sizes, std::uint64_t p, std::uint64_t tasks) {
    const std::uint64_t exact = sizeof(Word) * sizes.exact_words;
    const std::uint64_t running = sizeof(Word) * sizes.running_words;
    const std::uint64_t summing = sizes.scratch_bytes + 3 * (2 * exact + running);
    const std::uint64_t s = p + qmp::estimate_spare_words;
    const std::uint64_t dividing =
        2 * exact + 8 * s + qmp::iPsize(p + 103, tasks) + 8 * (qmp::estimated_division_words(s) + 2);
    return std::max(summing, dividing);
}

// Length of a product of two numbers of p words.
std::uint64_t full_product(std::uint64_t p) {
    return 2 * (p + qmp::big_float_extra_precision);
}

std::uint64_t number_bytes(std::uint64_t p) {
    return sizeof(Word) * (p + qmp::big_float_extra_precision + 1);
}

// What the correction takes at most beside what stands when it begins.
std::uint64_t correction_bytes(const EulerGammaSeriesC& series, std::uint64_t p, std::uint64_t tasks) {
    const PlanSizes sizes = series.SizesForPlan(build_psr_plan(series, p, 1.0), 0, tasks);
    const std::uint64_t summing =
        sizes.scratch_bytes + sizeof(Word) * (2 * sizes.running_words + 4 * sizes.exact_words);
    const std::uint64_t finishing =
        4 * number_bytes(p) + std::max(qmp::iPsize(full_product(p), tasks), qmp::divide_bytes(p, tasks));
    return summing + finishing;
}

std::uint64_t logarithm_bytes(std::uint64_t p, std::uint64_t tasks) {
    std::uint64_t bytes = 0;
    for (const LogarithmTerm& term : logarithm_of_2) {
        bytes = std::max(bytes, qmp::memory_estimate(ArcCothSeries(term.x), p, tasks));
    }
    return std::max(bytes, 2 * number_bytes(p));
}

CheckedWords product_scratch(const ComputeContext& context, std::uint64_t p) {
    return context.allocate(qmp::scratch_words_for(full_product(p), context.parallel.tds));
}

// x / 2^bits.
void shift_right(qmp::ParallelContext parallel, BigFloat& x, int bits) {
    x.exp -= (bits + 63) / 64;
    x.mul_uW(parallel, Word{1} << (64 - bits % 64) % 64);
}

}  // namespace

// A/B, and what the correction needs of B = sum / square.
struct BrentMcMillan::Quotient {
    OwnedBigFloat square;
    OwnedBigFloat sum;
    OwnedBigFloat value;
};

BrentMcMillan::BrentMcMillan(std::uint64_t precision, std::uint64_t tasks, std::int32_t exponent,
                             bool refined, const AlgorithmInfo& names)
    : RamComputation(precision, tasks),
      ab_(exponent),
      c_(exponent),
      plan_(plan_of(ab_, precision_)),
      refined_(refined),
      names_(names) {
    const std::uint64_t p = precision_;
    const PlanSizes sizes = ab_.SizesForPlan(plan_, 0, tasks_);
    memory_estimate_ = shown_estimate(sizes, p, tasks_);

    // What really stands: the parts of B while A and B are divided, and the value after that.
    std::uint64_t kept = 0;
    std::uint64_t correcting = 0;
    if (refined_) c_words_ = correction_words(p, exponent);
    if (c_words_ != 0) {
        kept = 2 * number_bytes(c_words_);
        correcting = correction_bytes(c_, c_words_, tasks_);
    }
    const std::uint64_t exact = 2 * sizeof(Word) * sizes.exact_words;
    const std::uint64_t summing = sizes.scratch_bytes + 3 * (exact + sizeof(Word) * sizes.running_words);
    const std::uint64_t dividing = exact + number_bytes(p) + qmp::divide_bytes(p, tasks_);
    const std::uint64_t finishing = number_bytes(p) + std::max(correcting, 2 * number_bytes(p));
    memory_taken_ = std::max({kept + summing, kept + dividing, kept + finishing,
                              2 * number_bytes(p) + logarithm_bytes(p, tasks_)});
}

std::uint64_t BrentMcMillan::largest_product() const {
    std::uint64_t longest = std::max(ab_.largest_product(plan_), qmp::newton_largest_product(precision_));
    longest = std::max(longest, full_product(precision_));
    if (c_words_ != 0) longest = std::max(longest, qmp::sum_largest_product(c_, c_words_));
    for (const LogarithmTerm& term : logarithm_of_2) {
        longest = std::max(longest, qmp::sum_largest_product(ArcCothSeries(term.x), precision_));
    }
    return longest;
}

// Refined, the method reaches twice the precision with the same n.
void BrentMcMillan::warn_if_too_small() const {
    const double target = precision_units(precision_);
    const double limit = four_n(ab_.exponent()) * (refined_ ? 2 : 1);
    if (target <= limit) return;
    const auto digits = [](double units) {
        return console::format_int(
            static_cast<std::uint64_t>(std::llrint(units * series_constants().log10_e - 0.5)));
    };
    constexpr std::uint64_t column = 8;
    console::println("Warning:", 'R');
    console::println("The current parameter is too small to meet the target precision.", 'R');
    console::print_column_line(column, "Target:", digits(target));
    console::print_column_line(column, "Limit:", digits(limit));
    console::newline();
    console::set_color('w');
}

BrentMcMillan::Quotient BrentMcMillan::sum_ab(const ComputeContext& context) const {
    const std::uint64_t p = precision_;
    qmp::Progress* progress = context.progress;
    Quotient result;
    TimedStep step(progress, "Summing Series A and B...  ", "Summing Series A and B");
    progress->note("Summing: " + console::format_separated(plan_.terms) + " terms", 'G');
    if (c_words_ != 0) {
        const std::uint64_t capacity = c_words_ + qmp::big_float_extra_precision;
        result.square = OwnedBigFloat(context.region, capacity);
        result.sum = OwnedBigFloat(context.region, capacity);
    }

    qmp::PsrMemory memory(context, ab_.SizesForPlan(plan_, 0, context.parallel.tds), 3);
    qmp::Series_EulerGamma_BM_AB::Running running;
    B_PSR(ab_, context.multiply(memory.scratch), progress, plan_, 0, memory, running);
    for (BigFloat& x : running) x.truncate_to(p + qmp::big_float_extra_precision);
    const auto& [square, mixed, R, S] = running;  // Q^2, Q P, R, S

    // Both parts of the quotient in the buffer that stays: A/B = ((P + Q) R - Q S) / (Q (R + Q^2)), times Q
    // above and below. The steps have the names of the second form.
    const std::uint64_t half = memory.exact[0].words() / 2;
    BigFloat numerator(memory.exact[0].data(), half);
    BigFloat denominator(memory.exact[0].data() + half, half);
    {
        const ScopedLabel label(progress, finishing_label, 'P');
        BigFloat sum(memory.exact[1].data(), half);
        BigFloat product(memory.exact[1].data() + half, half);
        const qmp::MultiplyContext multiplication = context.multiply(memory.scratch);
        {
            const ScopedLabel part(progress, "Finalizing: Q^2: ", 'w');
            sum.set_uadd(context.parallel, square, mixed, p);
            denominator.set_mul(multiplication, sum, R, p);
            product.set_mul(multiplication, square, S, p);
            numerator.set_usub(context.parallel, denominator, product, p);
        }
        {
            const ScopedLabel part(progress, "Finalizing: R + S: ", 'w');
            sum.set_uadd(context.parallel, R, square, p);
        }
        {
            const ScopedLabel part(progress, "Finalizing: Q * (R + S): ", 'w');
            denominator.set_mul(multiplication, square, sum, p);
        }
        if (c_words_ != 0) {
            result.square.number.set_BigFloat(context.parallel, square, c_words_);
            result.sum.number.set_BigFloat(context.parallel, sum, c_words_);
        }
    }
    memory.release_temporaries();
    memory.running[1].reset();
    step.end();
    result.value = divide(context, numerator, denominator, p);
    return result;
}

OwnedBigFloat BrentMcMillan::sum_c(const ComputeContext& context, const Quotient& ab) const {
    const std::uint64_t p = c_words_;
    const std::uint64_t capacity = p + qmp::big_float_extra_precision + 1;
    qmp::Progress* progress = context.progress;
    TimedStep step(progress, correction_title, correction_status);
    const qmp::PsrPlan plan = build_psr_plan(c_, p, 1.0);
    progress->note("Summing: " + console::format_separated(plan.terms) + " terms", 'G');

    // (P + Q) / Q is 4 n C, and B^2 is sum^2 / square^2.
    OwnedBigFloat numerator(context.region, capacity);
    OwnedBigFloat denominator(context.region, capacity);
    {
        qmp::PsrMemory memory(context, c_.SizesForPlan(plan, 0, context.parallel.tds));
        BigFloat P, Q;
        B_PSR(c_, context.multiply(memory.scratch), progress, plan, 0, memory, P, Q);
        const ScopedLabel label(progress, "Finalizing: P + Q: ", 'w');
        numerator.number.set_uadd(context.parallel, P, Q, p);
        denominator.number.set_BigFloat(context.parallel, Q, p);
    }
    {
        const ScopedLabel label(progress, finishing_label, 'P');
        const CheckedWords scratch = product_scratch(context, p);
        const auto multiply_by_square = [&](OwnedBigFloat& x, BigFloatView factor, const char* squaring,
                                            const char* multiplying) {
            OwnedBigFloat square(context.region, capacity);
            {
                const ScopedLabel part(progress, squaring, 'w');
                square.number.set_sqr(context.multiply(scratch), factor, p);
            }
            const ScopedLabel part(progress, multiplying, 'w');
            OwnedBigFloat product(context.region, capacity);
            product.number.set_mul(context.multiply(scratch), x.number, square.number, p);
            x = std::move(product);
        };
        multiply_by_square(numerator, ab.square.number, "Finalizing: S^2: ", "Finalizing: P * S: ");
        multiply_by_square(denominator, ab.sum.number, "Finalizing: R^2: ", "Finalizing: Q * R: ");
        const ScopedLabel part(progress, "Shifting: Q * S: ", 'w');
        shift_right(context.parallel, numerator.number, ab_.exponent() + 2);
    }
    step.end();
    return divide(context, numerator.number, denominator.number, p);
}

OwnedBigFloat BrentMcMillan::sum_quotients(const ComputeContext& context) const {
    Quotient ab = sum_ab(context);
    if (!refined_) return std::move(ab.value);
    if (c_words_ == 0) {
        const TimedStep step(context.progress, correction_title, correction_status);
        context.progress->note("skipped", 'G');
        return std::move(ab.value);
    }
    ab.value = relocate(context, std::move(ab.value));
    const OwnedBigFloat correction = sum_c(context, ab);
    OwnedBigFloat difference(context.region, precision_ + qmp::big_float_extra_precision + 1);
    difference.number.set_sub(context.parallel, ab.value.number, correction.number, precision_);
    return difference;
}

OwnedBigFloat BrentMcMillan::compute(const ComputeContext& context) const {
    warn_if_too_small();
    OwnedBigFloat gamma = relocate(context, sum_quotients(context));
    const std::int64_t exponent = ab_.exponent();
    if (exponent == 0) return gamma;
    for (const LogarithmTerm& term : logarithm_of_2) {
        gamma = add_arccoth_term(context, std::move(gamma), term.x, -exponent * term.c, precision_);
    }
    return gamma;
}

}  // namespace kelvara
