// The inverse square root of a word by plain products.
#include <cmath>

#include "errors/check.h"
#include "errors/exception.h"
#include "numbers/newton.h"
#include "numbers/newton_step.h"

namespace qmp {
namespace {

constexpr const char* function_name = "BigFloatR_invsqrt_uW_E()";

}  // namespace

void newton::inverse_square_root_step_E(const MultiplyContext& context, BigFloat& r, Word w, std::uint64_t p,
                                        Word* scratch, std::uint64_t scratch_words) {
    require_capacity(function_name, scratch_words, elementary_scratch_words(p));
    const std::uint64_t estimate_p = estimate_precision(p);
    BigFloat estimate(scratch, estimate_p + 2);
    BigFloat correction(scratch + estimate_p + 2, estimate_p + 3);

    estimate.set_BigFloat(context, r, estimate_p);
    r.set_sqr(context, estimate, p);
    r.mul_uW(context, w);
    const Estimate side = take_error(function_name, r, estimate_p);
    if (r.is_zero()) {
        r.set_BigFloat(context, estimate, p);
    } else {
        halve(context, r);
        correction.set_mul(context, r, estimate, estimate_p + 1);
        apply_correction(context, r, estimate, correction, side, p);
    }
    perturb(r, p);
}

void BigFloatR_invsqrt_uW_E(const MultiplyContext& context, BigFloat& r, Word w, std::uint64_t p,
                            Word* scratch, std::uint64_t scratch_words) {
    if (w == 0) throw ArithmeticException(function_name, "Divide by zero.");
    require_capacity(function_name, r.AL, p + 4);
    require_capacity(function_name, scratch_words, newton::elementary_scratch_words(p));
    if (p == 0) {
        r.set_double(1.0 / std::sqrt(static_cast<double>(w)), 0);
        newton::drop_empty_words(r);
        return;
    }
    BigFloatR_invsqrt_uW_E(context, r, w, newton::estimate_precision(p), scratch, scratch_words);
    newton::inverse_square_root_step_E(context, r, w, p, scratch, scratch_words);
}

}  // namespace qmp
