#include "series/series_e_taylor.h"

#include <algorithm>

#include "errors/check.h"
#include "numbers/parallel_copy.h"
#include "series/exact_sum.h"
#include "series/leaf_bisection.h"
#include "series/leaf_e_taylor.h"
#include "series/series_constants.h"
#include "series/short_merge.h"
#include "series/transform_pair.h"

namespace qmp {

std::uint64_t Series_e_Taylor::TermsForPrecision(std::uint64_t p) const {
    const double target = static_cast<double>(p) * series_constants().ln_word + 1;
    const auto reaches = [&](std::uint64_t n) { return log_factorial(static_cast<double>(n)) >= target; };
    std::uint64_t high = 1;
    while (!reaches(high)) high *= 2;
    std::uint64_t low = 0;
    while (high - low > 1) {
        const std::uint64_t m = (low + high) >> 1;
        (reaches(m) ? high : low) = m;
    }
    return high + 2;
}

void Series_e_Taylor::leaf(const MultiplyContext&, Buffers& out, std::uint64_t a, std::uint64_t b) const {
    BasicInt P(out[0].base, out[0].AL);
    BasicInt Q(out[1].base, out[1].AL);
    sum_e_taylor_leaf(alternating, P, Q, a, b);
    set_leaf(out[0], P);
    set_leaf(out[1], Q);
}

void Series_e_Taylor::merge(const MultiplyContext& context, Buffers& whole, const Buffers& right,
                            bool subtract) {
    auto& [P, Q, T] = whole;
    const ExactFloatView P1 = right[0];
    const ExactFloatView Q1 = right[1];

    // P1 makes room for the product in P's buffer.
    require_capacity("Series_e_Taylor::merge()", T.AL, P1.L);
    if (is_short_product(Q1.L, std::max(P.L, Q.L))) {
        T.set_ExactFloat(P1);
        multiply_short_and_add(P, right[1], T, subtract);
        multiply_short_in_place(Q, right[1]);
        Q.strip_low_zero_words();
        return;
    }
    parallel_copy(context.parallel(), T.base, P1.T, P1.L);
    const ExactFloatView moved = {T.base, P1.L, P1.exp, P1.hash};
    {
        ExactTransformPair pair(context, Q1.L + std::max(P.L, Q.L));
        pair.load(0, Q1);
        pair.load(1, Q);
        pair.multiply(Q, 1);
        Q.strip_low_zero_words();
        pair.load(1, P);
        pair.multiply(P, 1);
    }
    if (subtract) {
        subtract_in_place(P, moved);
    } else {
        add_in_place(P, moved);
    }
}

}  // namespace qmp
