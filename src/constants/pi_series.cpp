#include "constants/pi_series.h"

#include <algorithm>

#include "multiply/multiply.h"
#include "numbers/division_driver.h"
#include "series/series_sizes.h"
#include "series/sum_series.h"
#include "series/timed_step.h"
#include "series/transform_pair.h"

namespace kelvara {

using qmp::BigFloat;
using qmp::BigFloatView;
using qmp::CheckedWords;
using qmp::ComputeContext;
using qmp::OwnedBigFloat;
using qmp::ScopedLabel;

namespace {

// Length of the final product, both operands cut to the words that count.
std::uint64_t final_product_words(std::uint64_t p) {
    return 2 * (p + qmp::big_float_extra_precision);
}

// Scratch in bytes for upper products of up to n words with half-length transforms.
std::uint64_t halved_scratch_bytes(std::uint64_t n, std::uint64_t tasks) {
    std::uint64_t bytes = 0;
    for (const qmp::AlgorithmTable::Entry& entry : qmp::basic_table_64().entries()) {
        bytes = std::max(bytes, entry.algorithm->psize_halved(std::min(entry.threshold, n), tasks));
        if (entry.threshold >= n) break;
    }
    return bytes;
}

std::uint64_t memory_estimate(const PiFormula& formula, std::uint64_t p, std::uint64_t tasks, double factor) {
    const std::uint64_t s = p + qmp::estimate_spare_words;
    const std::uint64_t series = qmp::memory_estimate(formula.series, p, tasks, factor);
    const std::uint64_t root = qmp::iPsize(p + 102, tasks) + 8 * (p + 107) + (8 * s + 32) + 8 * s + 16;
    const std::uint64_t product = formula.reduced ? halved_scratch_bytes(2 * s, tasks) + 24 * s + 48
                                                  : (8 * s + 32) + qmp::iPsize(2 * s, tasks) + 8 * s + 16;
    // What the inverse square root really holds besides its own needs: the quotient and its result.
    const std::uint64_t root_needed = 8 * (p + 3) + 8 * (p + 7) + qmp::inverse_square_root_bytes(p, tasks);
    return std::max({series, root, product, root_needed});
}

CheckedWords scratch_for(const ComputeContext& context, std::uint64_t bytes) {
    return context.allocate((bytes + sizeof(qmp::Word) - 1) / sizeof(qmp::Word));
}

// x *= y to p words. Transformed, the operands are in the scratch, and the product takes x's place.
void multiply_transformed(const ComputeContext& context, BigFloat& x, BigFloatView y, std::uint64_t p) {
    const std::uint64_t kept = p + qmp::big_float_extra_precision;
    const std::uint64_t n = final_product_words(p);
    const CheckedWords scratch = scratch_for(context, qmp::iPsize(n, context.parallel.tds));
    qmp::FloatTransformPair pair(context.multiply(scratch), n);
    pair.load(0, x.view().cut(kept));
    pair.load(1, y.cut(kept));
    pair.multiply(x, 0, p);
}

// The same with half-length transforms, and a product beside the operands.
void multiply_halved(const ComputeContext& context, BigFloat& x, BigFloatView y, std::uint64_t p) {
    const CheckedWords scratch =
        scratch_for(context, halved_scratch_bytes(final_product_words(p), context.parallel.tds));
    OwnedBigFloat product(context.region, p + qmp::big_float_extra_precision);
    product.number.set_mul_halved(context.multiply(scratch), x, y, p);
    x.set_BigFloat(context.parallel, product.number, p);
}

}  // namespace

PiSeries::PiSeries(std::uint64_t precision, std::uint64_t tasks, const PiFormula& formula)
    : RamComputation(precision, tasks), formula_(formula) {
    memory_estimate_ = kelvara::memory_estimate(formula, precision_, tasks_, factor());
}

std::uint64_t PiSeries::largest_product() const {
    return std::max(qmp::sum_largest_product(formula_.series, precision_, factor()),
                    final_product_words(precision_));
}

OwnedBigFloat PiSeries::compute(const ComputeContext& context) const {
    const std::uint64_t p = precision_;
    OwnedBigFloat pi;
    {
        const qmp::SeriesFraction sum =
            sum_fraction(formula_.series, context, p, factor(), formula_.w, formula_.d, formula_.negative);
        pi = divide(context, sum.denominator, sum.numerator, p);
    }
    pi = relocate(context, std::move(pi));
    const OwnedBigFloat root = inverse_square_root(context, formula_.r, p);

    const qmp::TimedStep step(context.progress, "Final Multiply...", "Final Multiply");
    const ScopedLabel label(context.progress, "Multiplying: ", 'w');
    if (formula_.reduced) {
        multiply_halved(context, pi.number, root.number, p);
    } else {
        multiply_transformed(context, pi.number, root.number, p);
    }
    return pi;
}

}  // namespace kelvara
