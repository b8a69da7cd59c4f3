#include "series/series_e_taylor.h"

#include <algorithm>

#include "errors/check.h"
#include "numbers/parallel_copy.h"
#include "series/exact_sum.h"
#include "series/leaf_bisection.h"
#include "series/leaf_int.h"
#include "series/series_constants.h"
#include "series/transform_pair.h"

namespace qmp {

namespace {

// Leaves of this many terms are halved once more.
constexpr std::uint64_t halved_leaf = 8;
// Half a leaf holds at most eight terms, a word each; the merge of its halves takes one more for carries.
constexpr std::uint64_t half_leaf_words = 17;

void kernel(bool negative, BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b) {
    if (negative) {
        E_TaylorA_BSR_End_PQ1(P, Q, a, b);
    } else {
        E_TaylorN_BSR_End_PQ1(P, Q, a, b);
    }
}

void short_range(const BinarySplittingSeries& series, BasicInt& P, BasicInt& Q, std::uint64_t a,
                 std::uint64_t b) {
    if (b - a < halved_leaf) {
        kernel(series.alternating, P, Q, a, b);
        return;
    }
    Word words[4 * half_leaf_words];
    BasicInt P0(words, half_leaf_words);
    BasicInt Q0(words + half_leaf_words, half_leaf_words);
    BasicInt P1(words + 2 * half_leaf_words, half_leaf_words);
    BasicInt Q1(words + 3 * half_leaf_words, half_leaf_words);
    const std::uint64_t m = (a + b) >> 1;
    short_range(series, P0, Q0, a, m);
    short_range(series, P1, Q1, m, b);
    P.set_mulB(P0, Q1);
    if (series.subtracts(a, m)) {
        P -= P1;
    } else {
        P += P1;
    }
    Q.set_mulB(Q0, Q1);
}

void start_kernel(const char* function, BasicInt& P, BasicInt& Q, Word p, std::uint64_t a, std::uint64_t b) {
    require_capacity(function, P.AL, b - a);
    require_capacity(function, Q.AL, b - a);
    leaf_set(P, p);
    leaf_set(Q, a + 1);
    leaf_mul(Q, a + 2);
}

}  // namespace

void E_TaylorN_BSR_End_PQ1(BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b) {
    start_kernel("E_TaylorN_BSR_End_PQ1()", P, Q, a + 3, a, b);
    for (std::uint64_t k = a + 3; k <= b; k++) {
        leaf_mul(P, k);
        leaf_add(P, 1);
        leaf_mul(Q, k);
    }
}

void E_TaylorA_BSR_End_PQ1(BasicInt& P, BasicInt& Q, std::uint64_t a, std::uint64_t b) {
    start_kernel("E_TaylorA_BSR_End_PQ1()", P, Q, a + 1, a, b);
    bool add = true;
    for (std::uint64_t k = a + 3; k <= b; k++, add = !add) {
        leaf_mul(P, k);
        if (add) {
            leaf_add(P, 1);
        } else {
            leaf_sub(P, 1);
        }
        leaf_mul(Q, k);
    }
}

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
    short_range(*this, P, Q, a, b);
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
