#include "constants/arccoth_series.h"

#include <cmath>
#include <string>
#include <utility>

#include "constants/arccoth_terms.h"
#include "errors/check.h"
#include "series/leaf_bisection.h"
#include "series/leaf_int.h"
#include "series/series_constants.h"
#include "series/sum_series.h"

namespace kelvara {

using qmp::BasicInt;
using qmp::ComputeContext;
using qmp::DoubleWord;
using qmp::ExactFloat;
using qmp::leaf_mul;
using qmp::leaf_set;
using qmp::OwnedBigFloat;
using qmp::Word;

namespace {

constexpr const char* small_kernel = "ArcCoth_BSR_End_small()";
constexpr const char* large_kernel = "ArcCoth_BSR_End_large()";

qmp::SeriesCost cost_of(double square) {
    const double ratio = std::log(square);
    return qmp::SeriesCost::of(ratio, ratio + qmp::series_constants().ln_2, 1);
}

DoubleWord factor_at(Word square, std::uint64_t k) {
    return static_cast<DoubleWord>(square) * (2 * k + 1);
}

bool is_small(Word square, std::uint64_t b) {
    return qmp::high_word(factor_at(square, b)) == 0;
}

void require_capacities(const char* function, std::uint64_t P, std::uint64_t Q, std::uint64_t R,
                        std::uint64_t terms) {
    qmp::require_capacity(function, P, 2 * terms + 1);
    qmp::require_capacity(function, Q, 2 * terms + 1);
    qmp::require_capacity(function, R, terms + 1);
}

// One word at a time: x^2 (2k + 1), which steps by 2 x^2, or its two factors.
template <bool small>
void sum_terms(BasicInt& P, BasicInt& Q, BasicInt& R, Word square, std::uint64_t a, std::uint64_t b) {
    const auto multiply = [&](BasicInt& x, std::uint64_t k) {
        if constexpr (small) {
            leaf_mul(x, square * (2 * k + 1));
        } else {
            leaf_mul(x, square);
            leaf_mul(x, 2 * k + 1);
        }
    };
    leaf_set(P, 1);
    leaf_set(Q, 1);
    multiply(Q, a + 1);
    leaf_set(R, 2 * a + 3);
    for (std::uint64_t k = a + 2; k <= b; k++) {
        multiply(P, k);
        P += R;
        multiply(Q, k);
        leaf_mul(R, 2 * k + 1);
    }
}

// The narrowest code that serves all terms up to index b.
bool sum_leaf(Word square, ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a, std::uint64_t b) {
    using qmp::leaf::sum_leaf;
    const DoubleWord factor = factor_at(square, b);
    if (factor >> 32 == 0) return sum_leaf<23, 31>(ArcCothTerms<32>{square}, P, Q, R, a, b);
    if (factor >> 40 == 0) return sum_leaf<23, 31>(ArcCothTerms<40>{square}, P, Q, R, a, b);
    if (factor >> 48 == 0) return sum_leaf<23, 31>(ArcCothTerms<48>{square}, P, Q, R, a, b);
    if (factor >> 64 == 0) return sum_leaf<23, 31>(ArcCothTerms<64>{square}, P, Q, R, a, b);
    if (factor >> 96 == 0) return sum_leaf<31>(ArcCothTerms<96>{square}, P, Q, R, a, b);
    return false;
}

}  // namespace

ArcCothSeries::ArcCothSeries(std::uint64_t x)
    : BSS_P2B3_Type0(false, 15, 16, cost_of(static_cast<double>(x * x))), x_(x), square_(x * x) {}

qmp::TermFactors ArcCothSeries::term_factors() const {
    return {.R = {{2, 1}}, .Q = {{0, static_cast<std::int64_t>(x_), 2}, {2, 1}}};
}

void ArcCothSeries::BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, const qmp::MultiplyContext&,
                            std::uint64_t a, std::uint64_t b) const {
    const bool small = is_small(square_, b);
    require_capacities(small ? small_kernel : large_kernel, P.AL, Q.AL, R.AL, b - a);
    if (sum_leaf(square_, P, Q, R, a, b)) return;
    BasicInt p(P.base, P.AL);
    BasicInt q(Q.base, Q.AL);
    BasicInt r(R.base, R.AL);
    (small ? ArcCoth_BSR_End_small : ArcCoth_BSR_End_large)(p, q, r, square_, a, b);
    set_leaf(P, p);
    set_leaf(Q, q);
    set_leaf(R, r);
}

OwnedBigFloat sum_arccoth(const ComputeContext& context, std::uint64_t x, std::int64_t c, std::uint64_t p) {
    return SumSeries(ArcCothSeries(x), context, p, 1, x, c);
}

OwnedBigFloat sum_arccoth_term(const ComputeContext& context, std::uint64_t x, std::int64_t c,
                               std::uint64_t p) {
    context.progress->heading(std::to_string(c) + " ArcCoth( " + std::to_string(x) + " )");
    return sum_arccoth(context, x, c, p);
}

OwnedBigFloat add_arccoth_term(const ComputeContext& context, OwnedBigFloat sum, std::uint64_t x,
                               std::int64_t c, std::uint64_t p) {
    const std::uint64_t kept = p + qmp::big_float_extra_precision;
    OwnedBigFloat both;
    {
        const OwnedBigFloat term = sum_arccoth_term(context, x, c, p);
        both = OwnedBigFloat(context.region, kept + 1);
        both.number.set_add(context.parallel, sum.number, term.number, p);
        both.number.truncate_to(kept);
        sum = {};
    }
    return relocate(context, std::move(both));
}

void ArcCoth_BSR_End_small(BasicInt& P, BasicInt& Q, BasicInt& R, Word square, std::uint64_t a,
                           std::uint64_t b) {
    require_capacities(small_kernel, P.AL, Q.AL, R.AL, b - a);
    sum_terms<true>(P, Q, R, square, a, b);
}

void ArcCoth_BSR_End_large(BasicInt& P, BasicInt& Q, BasicInt& R, Word square, std::uint64_t a,
                           std::uint64_t b) {
    require_capacities(large_kernel, P.AL, Q.AL, R.AL, b - a);
    sum_terms<false>(P, Q, R, square, a, b);
}

}  // namespace kelvara
