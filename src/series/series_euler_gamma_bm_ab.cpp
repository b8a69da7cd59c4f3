#include "series/series_euler_gamma_bm_ab.h"

#include <algorithm>
#include <cmath>

#include "errors/check.h"
#include "numbers/big_float.h"
#include "numbers/parallel_copy.h"
#include "series/exact_sum.h"
#include "series/leaf_euler_gamma_bm_ab.h"
#include "series/psr_plan.h"
#include "series/run_both.h"
#include "series/series_constants.h"
#include "series/series_sizes.h"
#include "series/short_merge.h"
#include "series/transform_pair.h"

namespace qmp {

namespace {

using Buffers = Series_EulerGamma_BM_AB::Buffers;

// Of 32 terms, ranges of 512 to 8192 terms behind index 1,500,000 take 2 to 4 % longer, of 96 terms 3 %.
constexpr std::uint64_t leaf_terms = 64;

// The longest product of folding block i, and of the finishing: two running values of full precision.
std::uint64_t full_product(const PsrBlock& block) {
    return 2 * (block.precision_at_a + big_float_extra_precision) + fold_guard_words;
}

// An exact number in words of its own, for products that are short.
struct ShortNumber {
    Word words[longest_short_product + 2];
    ExactFloat number{words, longest_short_product + 2};
};

// With the carries of S0 Q1 + R0 P1 and of R and S.
bool is_short_merge(const Buffers& left, const Buffers& right) {
    const std::uint64_t factor = std::max(right[0].L, right[1].L);
    return is_short_product(std::max(left[2].L, left[3].L) + 1, 2 * factor) &&
           is_short_product(std::max(left[0].L, left[1].L), factor) &&
           std::max(right[2].L, right[3].L) <= longest_short_product;
}

// R = (R0 Q1) Q1 + R1, S = (S0 Q1 + R0 P1) Q1 + S1.
void merge_short(Buffers& whole, const Buffers& right) {
    auto& [P, Q, R, S, inner] = whole;
    const ExactFloat& P1 = right[0];
    const ExactFloat& Q1 = right[1];
    ShortNumber R1;
    R1.number.set_ExactFloat(right[2]);
    ShortNumber S1;
    S1.number.set_ExactFloat(right[3]);

    ShortNumber product;
    set_short_product(inner, R, P1);
    set_short_product(product.number, S, Q1);
    add_in_place(inner, product.number);
    set_short_product(product.number, R, Q1);
    set_short_product(R, product.number, Q1);
    add_in_place(R, R1.number);
    set_short_product(S, inner, Q1);
    add_in_place(S, S1.number);

    set_short_product(product.number, Q, P1);
    multiply_short_and_add(P, Q1, product.number, false);
    multiply_short_in_place(Q, Q1);
    Q.strip_low_zero_words();
}

// A buffer in two, of whole groups of eight words but for the last one.
struct Halves {
    ExactFloat lower;
    ExactFloat upper;

    explicit Halves(const ExactFloat& whole) {
        const std::uint64_t half = whole.AL / 2 & ~std::uint64_t{7};
        lower = ExactFloat(whole.base, half);
        upper = ExactFloat(whole.base + half, whole.AL - half);
    }
};

// The number in the lower half of its buffer.
void set_number(ExactFloat& whole, const ExactFloat& lower) {
    const std::uint64_t capacity = whole.AL;
    whole = lower;
    whole.AL = capacity;
}

// As ExactFloat::set_ExactFloat, with all tasks.
void copy(const MultiplyContext& context, ExactFloat& destination, ExactFloatView source) {
    require_capacity("Series_EulerGamma_BM_AB::merge()", destination.AL, source.L);
    parallel_copy(context.parallel(), destination.base, source.T, source.L);
    destination.T = destination.base;
    destination.L = source.L;
    destination.exp = source.exp;
    destination.hash = source.hash;
}

}  // namespace

Series_EulerGamma_BM_AB::Series_EulerGamma_BM_AB(std::int32_t exponent)
    : BinarySplittingSeries(false, 22, leaf_terms), exponent_(exponent), n_(std::ldexp(1.0, exponent)) {}

PlanSizes Series_EulerGamma_BM_AB::SizesForPlan(const PsrPlan& plan, std::uint64_t first,
                                                std::uint64_t tasks) const {
    PlanSizes sizes = {};
    std::uint64_t last_words = 0;
    for (std::uint64_t i = first; i < plan.blocks.size(); i++) {
        const PsrBlock& block = plan.blocks[i];
        const BsrSizes exact = BSR_sizes(*this, block.size, 1, tasks);
        last_words = exact.words;
        // A fold keeps two of its values in the space of one exact buffer pair.
        sizes.exact_words = std::max({sizes.exact_words, exact.words, block.precision_at_a + size_margin});
        sizes.scratch_bytes = std::max(sizes.scratch_bytes, exact.scratch_bytes);
    }
    sizes.scratch_bytes =
        std::max(sizes.scratch_bytes, TableScratch(full_product(plan.blocks[first]), tasks));
    sizes.running_words = std::max(plan.blocks[first].precision_at_a + size_margin, 2 * last_words);
    return sizes;
}

std::uint64_t Series_EulerGamma_BM_AB::largest_product(const PsrPlan& plan) const {
    std::uint64_t longest = 0;
    for (const PsrBlock& block : plan.blocks) {
        longest = std::max({longest, 2 * (block.size / 2 + size_margin), full_product(block)});
    }
    return longest;
}

double Series_EulerGamma_BM_AB::decay(double x) const {
    const double ln_n = exponent_ * series_constants().ln_2;
    const auto log_term = [ln_n](double k) { return 2 * (k * ln_n - log_factorial(k)); };
    return x <= n_ ? 0 : std::max(0.0, log_term(n_) - log_term(x));
}

std::uint64_t Series_EulerGamma_BM_AB::TermsForPrecision(std::uint64_t p) const {
    const double target = static_cast<double>(p) * series_constants().ln_word + 1;
    const auto reaches = [&](std::uint64_t k) { return decay(static_cast<double>(k)) >= target; };
    std::uint64_t low = static_cast<std::uint64_t>(n_);
    std::uint64_t high = std::max<std::uint64_t>(low, 1);
    while (!reaches(high)) high = high > UINT64_MAX / 2 ? UINT64_MAX : 2 * high;
    while (high - low > 1) {
        const std::uint64_t m = low + (high - low) / 2;
        (reaches(m) ? high : low) = m;
    }
    return high + 2;
}

double Series_EulerGamma_BM_AB::SizeAtIndex(double x) const {
    const double m = std::min(x, n_);
    const double log_powers = m * exponent_ * series_constants().ln_2;
    return 2 * (log_powers - log_factorial(m)) + 3 * (log_factorial(x) + series_constants().ln_ln_word);
}

std::uint64_t Series_EulerGamma_BM_AB::split(std::uint64_t a, std::uint64_t b) const {
    return b - a > split_by_cost_above ? cost_split(a, b) : ((a + b + 1) >> 1) & ~std::uint64_t{1};
}

std::uint64_t Series_EulerGamma_BM_AB::cost_split(std::uint64_t a, std::uint64_t b) const {
    return find_split(*this, a, b) & ~std::uint64_t{1};
}

void Series_EulerGamma_BM_AB::leaf(const MultiplyContext&, Buffers& out, std::uint64_t a,
                                   std::uint64_t b) const {
    EulerGamma_BM_AB_BSR_End(out[0], out[1], out[2], out[3], exponent_, a, b);
}

// Eight products, ordered so that each finds a place where nothing is needed any more. The operands of a
// product are held transformed, or copied, before it is written.
void Series_EulerGamma_BM_AB::merge(const MultiplyContext& context, Buffers& whole, const Buffers& right,
                                    bool) {
    if (is_short_merge(whole, right)) return merge_short(whole, right);
    auto& [P, Q, R, S, A] = whole;
    const ExactFloatView P1 = right[0];
    const ExactFloatView Q1 = right[1];
    Halves square_and_mixed(A);
    ExactFloat& square = square_and_mixed.lower;
    ExactFloat& mixed = square_and_mixed.upper;
    Halves P_and_above(P);
    Halves Q_and_above(Q);
    {
        const std::uint64_t factor = std::max(P1.L, Q1.L);
        ExactTransformPair pair(context, factor + std::max({P.L, Q.L, factor}));
        pair.load(0, Q1);
        pair.square(square, 0);  // Q1^2
        pair.load(1, P1);
        pair.multiply(mixed, 0);  // P1 Q1
        pair.load(0, Q);
        pair.multiply(P_and_above.upper, 1);  // Q0 P1
        pair.load(1, Q1);
        pair.multiply(Q_and_above.lower, 0);  // Q0 Q1
        pair.load(0, P);
        pair.multiply(P_and_above.lower, 0);  // P0 Q1
    }
    add_in_place(P_and_above.lower, P_and_above.upper);
    set_number(P, P_and_above.lower);
    set_number(Q, Q_and_above.lower);
    Q.strip_low_zero_words();

    ExactFloat& R1 = P_and_above.upper;
    copy(context, R1, right[2]);
    ExactFloat& S1 = Q_and_above.upper;
    copy(context, S1, right[3]);
    {
        ExactTransformPair pair(context, std::max({square.L + S.L, square.L + R.L, mixed.L + R.L}));
        pair.load(0, square);
        pair.load(1, S);
        pair.multiply(S, 1);  // S0 Q1^2
        pair.load(1, R);
        pair.multiply(R, 0);  // R0 Q1^2
        pair.load(0, mixed);
        pair.multiply(A, 0);  // R0 P1 Q1
    }
    const auto add_to_S = [&] {
        add_in_place(S, A);
        add_in_place(S, S1);
    };
    run_both(
        context, [&] { add_in_place(R, R1); }, add_to_S);
}

}  // namespace qmp
