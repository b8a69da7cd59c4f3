// The quotient: the divisor's reciprocal at half the precision, and one step for the quotient itself.
#include <algorithm>

#include "console/console.h"
#include "console/format.h"
#include "errors/check.h"
#include "errors/exception.h"
#include "numbers/big_float_window.h"
#include "numbers/newton.h"
#include "numbers/newton_step.h"

namespace qmp {
namespace {

constexpr const char* function_name = "BigFloatR_div_P()";

// The words below a position; zero if none remain.
BigFloatView words_below(BigFloatView a, std::int64_t position) {
    if (a.top() <= position) return a;
    std::uint64_t length = a.exp < position ? static_cast<std::uint64_t>(position - a.exp) : 0;
    while (length > 0 && a.T[length - 1] == 0) --length;
    if (length == 0) return {a.T, 0, 0, 1};
    return {a.T, length, a.exp, a.sign};
}

Word word_below(BigFloatView a, std::int64_t position) {
    return !a.is_zero() && a.top() == position ? a.T[a.L - 1] : 0;
}

// d = a - u, of which a and u hold only the words below known_top. d is so small that the words there are
// equal, or differ by the one that was borrowed across known_top - 1.
void set_residual(ParallelContext parallel, BigFloat& d, BigFloatView a, BigFloatView u,
                  std::int64_t known_top, std::uint64_t precision, std::uint8_t sign) {
    const Word top_a = word_below(a, known_top);
    const Word top_b = word_below(u, known_top);
    const auto opposite = static_cast<std::uint8_t>(!sign);
    if (top_a == top_b) {
        d.set_sub(parallel, a, u, precision);
    } else if (top_a - top_b == 1) {
        d.set_rsub(a, u, known_top, precision, sign);
    } else if (top_b - top_a == 1) {
        d.set_rsub(u, a, known_top, precision, opposite);
    } else {
        console::print_warning("topA: " + console::format_int(top_a) +
                               ", topB: " + console::format_int(top_b));
        throw AlgorithmFailedException(function_name, "Convergence Failure");
    }
}

}  // namespace

void newton::division_step(const MultiplyContext& context, BigFloat& q, BigFloatView a, BigFloatView b,
                           BigFloatView r, std::uint64_t p, Word* scratch, Progress* progress) {
    const std::uint64_t estimate_p = estimate_precision(p);
    BigFloat estimate(scratch, estimate_p + 2);
    BigFloat product(scratch + estimate_p + 2, estimate_p + 5);
    {
        StepLabel label(progress, " - 0M - ", estimate_p);
        estimate.set_mul(context, a, r, estimate_p);
    }
    // u = b q0 agrees with a down to word position top(a) - p' or so. It is longer than the convolution by
    // at most p' - 5 words, and its top is at top(a) - 1 or above.
    const auto distance = static_cast<std::int64_t>(estimate_p) - 3;
    const std::int64_t known_top = std::min(a.top(), a.top() - distance);
    const std::uint64_t residual_p = estimate_p + 3;
    {
        StepLabel label(progress, " - 1M - ", estimate_p);
        StepTransforms transforms(function_name, context, p + 9);
        transforms.transform_kept(estimate);
        transforms.transform_other(b.cut(p + 2));
        transforms.multiply(product, known_top, residual_p);
        set_residual(context, q, words_below(a, known_top), product, known_top, residual_p, a.sign);
    }
    StepLabel label(progress, " - 2M - ", estimate_p);
    product.set_mul(context, r, q, estimate_p + 2);
    // One word of q's capacity stays free for the operations in place that finish a constant.
    q.set_add(context, estimate, product, p);
}

void BigFloatR_div_P(const MultiplyContext& context, BigFloat& q, BigFloatView a, BigFloatView b,
                     std::uint64_t p, Word* scratch, std::uint64_t scratch_words, Progress* progress) {
    if (a.is_zero()) {
        q.set_zero();
        return;
    }
    require_capacity(function_name, q.AL, p + 3);
    require_capacity(function_name, scratch_words, division_scratch_words(p));
    if (p < newton_transform_precision) {
        BigFloat r(scratch, p + 3);
        BigFloatR_rcp_E(context, r, b, p, scratch + r.AL, scratch_words - r.AL);
        q.set_mul(context, a, r, p);
        return;
    }
    const std::uint64_t estimate_p = newton::estimate_precision(p);
    BigFloat r(scratch, estimate_p + 3);
    {
        ScopedLabel label(progress, "0", newton::label_colour);
        BigFloatR_rcp_P(context, r, b, estimate_p, scratch + r.AL, scratch_words - r.AL, progress);
    }
    newton::division_step(context, q, a, b, r, p, scratch + r.AL, progress);
}

}  // namespace qmp
