// The reciprocal by transforms: the estimate is transformed once for two products, and of the first only
// the part that is not known beforehand is formed.
#include <algorithm>

#include "errors/check.h"
#include "numbers/newton.h"
#include "numbers/newton_step.h"

namespace qmp {
namespace {

constexpr const char* function_name = "BigFloatR_rcp_P()";

}  // namespace

void newton::reciprocal_step_P(const MultiplyContext& context, BigFloat& r, BigFloatView estimate,
                               BigFloatView x, std::uint64_t p, Word* scratch, Progress* progress) {
    const std::uint64_t estimate_p = estimate_precision(p);
    StepTransforms transforms(function_name, context, p + 8);
    BigFloat correction(scratch, correction_words(p));

    // y = x r' is 1.000... or 0.FFF... from known_top upward. The product is longer than the convolution by
    // at most p' - 4 words; with its top at position 1 or 2, its valid part ends at 5 - p' or above.
    const std::int64_t known_top = std::min<std::int64_t>(largest_error_top(estimate_p), 0);
    Estimate side;
    {
        StepLabel label(progress, " - 0M - ", estimate_p);
        transforms.transform_kept(estimate.cut(estimate_p + 2));
        transforms.transform_other(x.cut(p + 2));
        transforms.multiply(r, known_top, p);
        side = take_error_below(function_name, r, known_top, estimate_p);
    }
    if (r.is_zero()) {
        r.set_BigFloat(context, estimate, p);
        return;
    }
    StepLabel label(progress, side == Estimate::under ? " - U1M - " : " - O1M - ", estimate_p);
    transforms.transform_other(r.view().cut(estimate_p + 2));
    transforms.multiply(correction, r.top() + estimate.top(), estimate_p + 2);
    apply_correction(context, r, estimate, correction, side, p);
}

void BigFloatR_rcp_P(const MultiplyContext& context, BigFloat& r, BigFloatView x, std::uint64_t p,
                     Word* scratch, std::uint64_t scratch_words, Progress* progress) {
    if (p < newton_transform_precision) {
        BigFloatR_rcp_E(context, r, x, p, scratch, scratch_words);
        return;
    }
    require_capacity(function_name, r.AL, p + 3);
    require_capacity(function_name, scratch_words, reciprocal_scratch_words(p));
    const std::uint64_t estimate_p = newton::estimate_precision(p);
    const std::uint64_t capacity = estimate_p + 3;
    BigFloat estimate(scratch, capacity);
    {
        ScopedLabel label(progress, "0", newton::label_colour);
        BigFloatR_rcp_P(context, estimate, x, estimate_p, scratch + capacity, scratch_words - capacity,
                        progress);
    }
    newton::reciprocal_step_P(context, r, estimate, x, p, scratch + capacity, progress);
}

}  // namespace qmp
