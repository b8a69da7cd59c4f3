#include "constants/zeta3_series.h"

#include "constants/zeta3_terms.h"
#include "errors/check.h"
#include "series/leaf_int.h"
#include "series/series_constants.h"
#include "series/term_by_term_series.h"

namespace kelvara {

using qmp::BasicInt;
using qmp::ExactFloat;
using qmp::leaf_add;
using qmp::leaf_mul;
using qmp::leaf_set;
using qmp::parse_literal;
using qmp::require_capacity;
using qmp::SeriesCost;
using qmp::Word;

namespace {

// x = c_0, then x = x k + c_i.
template <std::size_t n>
void polynomial(BasicInt& x, const Word (&c)[n], std::uint64_t k) {
    leaf_set(x, c[0]);
    for (std::size_t i = 1; i < n; i++) {
        leaf_mul(x, k);
        leaf_add(x, c[i]);
    }
}

void multiply(BasicInt& x, Word w, int times) {
    for (int i = 0; i < times; i++) leaf_mul(x, w);
}

struct LongKernel {
    static constexpr bool alternating = true;
    static constexpr std::uint64_t size_margin = 41;
    static constexpr std::uint64_t leaf_size = 6;
    static constexpr std::uint64_t words = 14;
    static constexpr std::uint64_t longest_range = leaf_size - 1;

    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        Zeta3_AZ2_BSR_End_R1(R, k);
        Zeta3_AZ2_BSR_End_P1(P, R, k);
        Zeta3_AZ2_BSR_End_Q1(Q, k);
    }
    qmp::TermFactors term_factors() const {
        return {.R = {{1, 0, 5}, {2, -1, 3}}, .Q = {{0, 24}, {3, 1}, {3, 2}, {4, 1, 3}, {4, 3, 3}}};
    }
    // One more bit and Q takes a fourth word.
    bool sum_leaf(ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a, std::uint64_t b) const {
        return qmp::leaf::sum_leaf<21, 25, 31>(ZetaLongTerms(), P, Q, R, a, b);
    }
};

struct ShortKernel {
    static constexpr bool alternating = true;
    static constexpr std::uint64_t size_margin = 28;
    static constexpr std::uint64_t leaf_size = 12;
    static constexpr std::uint64_t words = 8;
    static constexpr std::uint64_t longest_range = leaf_size - 1;

    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        Zeta3_AZ1_BSR_End1(P, Q, R, k);
    }
    qmp::TermFactors term_factors() const { return {.R = {{1, 0, 5}}, .Q = {{4, 2, 5}}}; }
    bool sum_leaf(ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a, std::uint64_t b) const {
        return qmp::leaf::sum_leaf<23, 28>(ZetaShortTerms(), P, Q, R, a, b);
    }
};

// The sizes are those of one index further on.
template <typename Kernel>
class ZetaSeries final : public qmp::TermByTermSeries<Kernel> {
  public:
    using qmp::TermByTermSeries<Kernel>::TermByTermSeries;

    double SizeAtIndex(double x) const override { return qmp::CostedSeries::SizeAtIndex(x + 1); }
    double SizeAtIndexPSR(const double& x) const override { return qmp::CostedSeries::SizeAtIndexPSR(x + 1); }
};

// Per term: ln 110592 and ln 884736.
const qmp::BSS_P2B3_Type0& long_series() {
    static const ZetaSeries<LongKernel> series(
        SeriesCost::of(parse_literal("11.61360303272367278719252116826569593085"),
                       parse_literal("13.69304457440350871544421753264022563507"), 8));
    return series;
}

// Per term: ln 1024 twice.
const qmp::BSS_P2B3_Type0& short_series() {
    static const ZetaSeries<ShortKernel> series(
        SeriesCost::of(parse_literal("6.931471805599453094172321214581765680755"),
                       parse_literal("6.931471805599453094172321214581765680755"), 5));
    return series;
}

}  // namespace

const SeriesFormula& zeta3_formula(std::uint32_t algorithm) {
    static const SeriesFormula formulas[] = {{long_series(), 12463, 10368}, {short_series(), 77, 64}};
    return formulas[algorithm];
}

void Zeta3_AZ2_BSR_End_R1(BasicInt& R, std::uint64_t k) {
    require_capacity("Zeta3_AZ2_BSR_End_R1()", R.AL, 8);
    leaf_set(R, k);
    multiply(R, k, 4);
    multiply(R, 2 * k - 1, 3);
}

void Zeta3_AZ2_BSR_End_P1(BasicInt& P, const BasicInt& R, std::uint64_t k) {
    require_capacity("Zeta3_AZ2_BSR_End_P1()", P.AL, 14);
    Word words[6];
    BasicInt factor(words, 6);
    polynomial(factor, {126392, 412708, 531578, 336367, 104000, 12463}, k);
    P.set_mulB(R, factor);
}

void Zeta3_AZ2_BSR_End_Q1(BasicInt& Q, std::uint64_t k) {
    require_capacity("Zeta3_AZ2_BSR_End_Q1()", Q.AL, 9);
    leaf_set(Q, 24);
    leaf_mul(Q, 3 * k + 1);
    leaf_mul(Q, 3 * k + 2);
    multiply(Q, 4 * k + 1, 3);
    multiply(Q, 4 * k + 3, 3);
}

void Zeta3_AZ1_BSR_End1(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) {
    const char* function = "Zeta3_AZ1_BSR_End1()";
    require_capacity(function, R.AL, 5);
    require_capacity(function, P.AL, 8);
    require_capacity(function, Q.AL, 5);
    leaf_set(R, k);
    multiply(R, k, 4);
    Word words[3];
    BasicInt factor(words, 3);
    polynomial(factor, {205, 250, 77}, k);
    P.set_mulB(R, factor);
    leaf_set(Q, 4 * k + 2);
    multiply(Q, 4 * k + 2, 4);
}

}  // namespace kelvara
