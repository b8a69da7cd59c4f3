// The inverse square root of a word by transforms: the estimate is transformed once, for its square and
// for the correction.
#include <algorithm>

#include "errors/check.h"
#include "errors/exception.h"
#include "numbers/newton.h"
#include "numbers/newton_step.h"

namespace qmp {
namespace {

constexpr const char* function_name = "BigFloatR_invsqrt_uW_P()";

}  // namespace

void newton::inverse_square_root_step_P(const MultiplyContext& context, BigFloat& r, BigFloatView estimate,
                                        Word w, std::uint64_t p, Word* scratch, Progress* progress) {
    const std::uint64_t estimate_p = estimate_precision(p);
    StepTransforms transforms(function_name, context, p + 8);
    BigFloat correction(scratch, correction_words(p));

    // The square, of at most p + 5 words, fits the convolution whole. Only w times it is known to be near 1.
    const std::int64_t known_top = std::min<std::int64_t>(largest_error_top(estimate_p), 0);
    Estimate side;
    {
        StepLabel label(progress, " - 0S - ", estimate_p);
        transforms.transform_kept(estimate.cut(estimate_p + 2));
        transforms.square_kept(r, 2 * estimate.top(), p);
        r.mul_uW(context, w);
        r.truncate_above(known_top);
        side = take_error_below(function_name, r, known_top, estimate_p);
    }
    if (r.is_zero()) {
        r.set_BigFloat(context, estimate, p);
        return;
    }
    StepLabel label(progress, side == Estimate::under ? " - U1M - " : " - O1M - ", estimate_p);
    halve(context, r);
    transforms.transform_other(r.view().cut(estimate_p + 2));
    transforms.multiply(correction, r.top() + estimate.top(), estimate_p + 2);
    apply_correction(context, r, estimate, correction, side, p);
}

void BigFloatR_invsqrt_uW_P(const MultiplyContext& context, BigFloat& r, Word w, std::uint64_t p,
                            Word* scratch, std::uint64_t scratch_words, Progress* progress) {
    if (p < newton_transform_precision) {
        BigFloatR_invsqrt_uW_E(context, r, w, p, scratch, scratch_words);
        return;
    }
    require_capacity(function_name, r.AL, p + 4);
    require_capacity(function_name, scratch_words, inverse_square_root_scratch_words(p));
    const std::uint64_t estimate_p = newton::estimate_precision(p);
    const std::uint64_t capacity = estimate_p + 4;
    BigFloat estimate(scratch, capacity);
    {
        ScopedLabel label(progress, "0", newton::label_colour);
        BigFloatR_invsqrt_uW_P(context, estimate, w, estimate_p, scratch + capacity, scratch_words - capacity,
                               progress);
    }
    newton::inverse_square_root_step_P(context, r, estimate, w, p, scratch + capacity, progress);
}

}  // namespace qmp
