#include "constants/catalan_lupas.h"

#include "constants/catalan_lupas_terms.h"
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

namespace {

struct LupasKernel {
    static constexpr bool alternating = true;
    static constexpr std::uint64_t size_margin = 25;
    static constexpr std::uint64_t leaf_size = 10;
    static constexpr std::uint64_t words = 7;
    static constexpr std::uint64_t longest_range = leaf_size - 1;

    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        Catalan_Lupas_BSR_End1(P, Q, R, k);
    }
    qmp::TermFactors term_factors() const {
        return {.R = {{0, 16}, {1, 0, 3}, {4, -2}}, .Q = {{4, 1, 2}, {4, 3, 2}}};
    }
    bool sum_leaf(ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a, std::uint64_t b) const {
        return qmp::leaf::sum_leaf<24, 28, 31>(LupasTerms(), P, Q, R, a, b);
    }
};

}  // namespace

const SeriesFormula& catalan_lupas_formula() {
    // Per term: ln 4 and ln 256.
    static const qmp::TermByTermSeries<LupasKernel> series(
        qmp::SeriesCost::of(parse_literal("1.386294361119890618834464242916353136151"),
                            parse_literal("5.545177444479562475337856971665412544604"), 4));
    static const SeriesFormula formula = {series, 19, 18};
    return formula;
}

void Catalan_Lupas_BSR_End1(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) {
    const char* function = "Catalan_Lupas_BSR_End1()";
    require_capacity(function, P.AL, 7);
    require_capacity(function, Q.AL, 4);
    require_capacity(function, R.AL, 4);
    leaf_set(R, 16 * k);
    leaf_mul(R, k);
    leaf_mul(R, k);
    leaf_mul(R, 4 * k - 2);
    qmp::Word words[3];
    BasicInt factor(words, 3);
    leaf_set(factor, 40);
    leaf_mul(factor, k);
    leaf_add(factor, 56);
    leaf_mul(factor, k);
    leaf_add(factor, 19);
    P.set_mulB(R, factor);
    leaf_set(Q, 4 * k + 1);
    leaf_mul(Q, 4 * k + 1);
    leaf_mul(Q, 4 * k + 3);
    leaf_mul(Q, 4 * k + 3);
}

}  // namespace kelvara
