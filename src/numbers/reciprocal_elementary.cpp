// The reciprocal by plain products.
#include "console/console.h"
#include "errors/check.h"
#include "errors/exception.h"
#include "numbers/newton.h"
#include "numbers/newton_step.h"

namespace qmp {
namespace {

constexpr const char* function_name = "BigFloatR_rcp_E()";

// 1/x to the 52 bits of a double.
void set_start(BigFloat& r, BigFloatView x) {
    if (x.is_zero()) throw ArithmeticException(function_name, "Divide by zero.");
    const Word top = x.T[x.L - 1];
    if (top == 0) console::fatal_error("BigFloat::check_normalization(): Top word is zero.");

    double mantissa = static_cast<double>(top) * 0x1p-64;
    if (x.L >= 2) mantissa += static_cast<double>(x.T[x.L - 2]) * 0x1p-128;
    r.set_double((x.sign ? 1.0 : -1.0) / mantissa, -x.top());
    newton::drop_empty_words(r);
}

}  // namespace

void newton::reciprocal_step_E(const MultiplyContext& context, BigFloat& r, BigFloatView x, std::uint64_t p,
                               Word* scratch, std::uint64_t scratch_words) {
    require_capacity(function_name, scratch_words, elementary_scratch_words(p));
    const std::uint64_t estimate_p = estimate_precision(p);
    BigFloat estimate(scratch, estimate_p + 2);
    BigFloat correction(scratch + estimate_p + 2, estimate_p + 3);

    estimate.set_BigFloat(context, r, estimate_p);
    r.set_mul(context, x, estimate, p);
    const Estimate side = take_error(function_name, r, estimate_p);
    if (r.is_zero()) {
        r.set_BigFloat(context, estimate, p);
    } else {
        correction.set_mul(context, r, estimate, estimate_p + 1);
        apply_correction(context, r, estimate, correction, side, p);
    }
    perturb(r, p);
}

void BigFloatR_rcp_E(const MultiplyContext& context, BigFloat& r, BigFloatView x, std::uint64_t p,
                     Word* scratch, std::uint64_t scratch_words) {
    require_capacity(function_name, r.AL, p + 3);
    require_capacity(function_name, scratch_words, newton::elementary_scratch_words(p));
    if (p == 0) {
        set_start(r, x);
        return;
    }
    BigFloatR_rcp_E(context, r, x, newton::estimate_precision(p), scratch, scratch_words);
    newton::reciprocal_step_E(context, r, x, p, scratch, scratch_words);
}

}  // namespace qmp
