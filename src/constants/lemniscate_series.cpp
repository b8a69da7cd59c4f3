#include "constants/lemniscate_series.h"

#include <algorithm>
#include <cmath>

#include "constants/lemniscate_terms.h"
#include "errors/check.h"
#include "series/leaf_bisection.h"
#include "series/leaf_int.h"
#include "series/series_constants.h"

namespace kelvara {

using qmp::BasicInt;
using qmp::ExactFloat;
using qmp::leaf_mul;
using qmp::leaf_set;
using qmp::require_capacity;
using qmp::Word;

namespace {

constexpr std::uint64_t output_words = 3;

constexpr Word fourth_power(std::uint64_t x) {
    return x * x * (x * x);
}

qmp::SeriesCost cost_of(ArcSinlemnArgument x) {
    const double q = std::log(static_cast<double>(fourth_power(x.q)));
    const double ratio = q - std::log(static_cast<double>(fourth_power(x.p)));
    const double ln_8 = qmp::parse_literal("2.079441541679835928251696364374529704227");
    return qmp::SeriesCost::of(ratio, q + ln_8, 2);
}

struct ArcSinlemnKernel {
    static constexpr std::uint64_t words = output_words;
    static constexpr std::uint64_t longest_range = 15;
    Word p4;
    Word q4;

    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        ArcSinlemn_BSR_End1(P, Q, R, p4, q4, k);
    }
};

// The narrowest code for the arguments of the formulas, 1/2, 2/3, 7/23 and 7/137.
bool sum_leaf(Word p4, Word q4, ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a,
              std::uint64_t b) {
    using qmp::leaf::sum_leaf;
    const auto within = [&](int p_bits, int q_bits) {
        return p4 <= Word{1} << p_bits && q4 <= Word{1} << q_bits;
    };
    if (within(0, 4)) return sum_leaf<24, 28, 31>(ArcSinlemnTerms<0, 4>{p4, q4}, P, Q, R, a, b);
    if (within(4, 7)) return sum_leaf<24, 28, 31>(ArcSinlemnTerms<4, 7>{p4, q4}, P, Q, R, a, b);
    if (within(12, 19)) return sum_leaf<24, 28, 31>(ArcSinlemnTerms<12, 19>{p4, q4}, P, Q, R, a, b);
    if (within(12, 29)) return sum_leaf<22, 28>(ArcSinlemnTerms<12, 29>{p4, q4}, P, Q, R, a, b);
    return false;
}

}  // namespace

ArcSinlemnSeries::ArcSinlemnSeries(ArcSinlemnArgument x)
    : BSS_P2B3_Type0(false, 19, 8, cost_of(x)), x_(x), p4_(fourth_power(x.p)), q4_(fourth_power(x.q)) {
    longest_leaf = ArcSinlemnKernel::longest_range;
}

qmp::TermFactors ArcSinlemnSeries::term_factors() const {
    const auto constant = [](std::uint64_t w) { return qmp::TermFactor{0, static_cast<std::int64_t>(w), 4}; };
    return {.R = {constant(x_.p), {4, -3}, {2, -1}}, .Q = {constant(x_.q), {4, 1}, {2, 0}}};
}

void ArcSinlemnSeries::BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, const qmp::MultiplyContext&,
                               std::uint64_t a, std::uint64_t b) const {
    if (sum_leaf(p4_, q4_, P, Q, R, a, b)) return;
    qmp::LeafOutputs out = {{P.base, P.AL}, {Q.base, Q.AL}, {R.base, R.AL}};
    leaf_bisect(ArcSinlemnKernel{p4_, q4_}, alternating, out, a, b);
    set_leaf(P, out.P);
    set_leaf(Q, out.Q);
    set_leaf(R, out.R);
}

const LemniscateFormula& lemniscate_formula(std::uint32_t algorithm) {
    static constexpr LemniscateFormula formulas[] = {
        {{{1, 2}, 8}, {{7, 23}, 4}},
        {{{2, 3}, 8}, {{7, 137}, -4}},
    };
    return formulas[algorithm];
}

void ArcSinlemn_BSR_End1(BasicInt& P, BasicInt& Q, BasicInt& R, Word p4, Word q4, std::uint64_t k) {
    const char* function = "ArcSinlemn_BSR_End1()";
    require_capacity(function, R.AL, output_words);
    require_capacity(function, Q.AL, output_words);
    require_capacity("BasicInt::set_BasicInt()", P.AL, output_words);
    leaf_set(R, p4);
    leaf_mul(R, 4 * k - 3);
    leaf_mul(R, 2 * k - 1);
    std::copy_n(R.T, R.L, P.T);
    P.L = R.L;
    P.hash = R.hash;
    leaf_set(Q, q4);
    leaf_mul(Q, 4 * k + 1);
    leaf_mul(Q, 2 * k);
}

}  // namespace kelvara
