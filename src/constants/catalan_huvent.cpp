#include "constants/catalan_huvent.h"

#include "constants/catalan_huvent_terms.h"
#include "errors/check.h"
#include "numbers/division_driver.h"
#include "series/leaf_bisection.h"
#include "series/leaf_int.h"
#include "series/series_constants.h"
#include "series/sum_series.h"

namespace kelvara {

using qmp::BasicInt;
using qmp::ExactFloat;
using qmp::leaf_add;
using qmp::leaf_mul;
using qmp::leaf_set;
using qmp::leaf_sub;
using qmp::parse_literal;
using qmp::Word;

namespace {

constexpr std::uint64_t kernel_words = 18;

// Whether the straight-line code serves the index; then the term is there, but for its power of two.
template <int Bits>
bool set_term_below(ExactFloat& P, ExactFloat& Q, std::uint64_t k) {
    using Term = HuventTerm<Bits>;
    static_assert(Term::p_words <= kernel_words && Term::q_words <= kernel_words);
    if (k >> Bits != 0) return false;
    std::uint64_t check;
    Term::set_Q(Q.base, check, k);
    qmp::leaf::set_range(Q, Term::q_words, check);
    Term::set_P(P.base, check, k);
    qmp::leaf::set_range(P, Term::p_words, check);
    return true;
}

void set_term(BasicInt& p, BasicInt& q, std::uint64_t k) {
    leaf_set(q, 1);
    for (const Word factor : {2 * k + 1, 4 * k + 1, 4 * k + 3, 6 * k + 1, 6 * k + 5, 12 * k + 1, 12 * k + 5,
                              12 * k + 7, 12 * k + 11}) {
        leaf_mul(q, factor);
        leaf_mul(q, factor);
    }
    leaf_set(p, huvent_coefficients[0]);
    for (int i = 1; i <= huvent_degree; i++) {
        leaf_mul(p, k);
        if (i < huvent_added_coefficients) {
            leaf_add(p, huvent_coefficients[i]);
        } else {
            leaf_sub(p, huvent_coefficients[i]);
        }
    }
}

class HuventSeries final : public qmp::BSS_P2B2_BBP {
  public:
    // Per term: ln 64 and ln(24^12).
    HuventSeries()
        : BSS_P2B2_BBP(true, 64, 2,
                       qmp::SeriesCost::of(parse_literal("4.158883083359671856503392728749059408453"),
                                           parse_literal("38.13664596417534743576329921556466490649"), 18)) {}

    void BSR_End(ExactFloat& P, ExactFloat& Q, const qmp::MultiplyContext&, std::uint64_t,
                 std::uint64_t b) const override {
        Catalan_Huvent_BSR_End(P, Q, b);
    }
};

constexpr Word numerator_word = 469137217;
constexpr Word sum_word = 1334025;
constexpr Word denominator_word = 512265600;

}  // namespace

const qmp::BSS_P2B2_BBP& catalan_huvent_series() {
    static const HuventSeries series;
    return series;
}

CatalanHuvent::CatalanHuvent(std::uint64_t precision, std::uint64_t tasks)
    : RamComputation(precision, tasks) {
    memory_estimate_ = qmp::memory_estimate(catalan_huvent_series(), precision_, tasks_);
}

std::uint64_t CatalanHuvent::largest_product() const {
    return qmp::sum_largest_product(catalan_huvent_series(), precision_);
}

qmp::OwnedBigFloat CatalanHuvent::compute(const qmp::ComputeContext& context) const {
    qmp::OwnedBigFloat value;
    {
        // The first summed term is positive, and so is the sum.
        const qmp::SeriesFraction sum = sum_fraction(catalan_huvent_series(), context, precision_, 1.0,
                                                     numerator_word, denominator_word, false, sum_word);
        value = divide(context, sum.numerator, sum.denominator, precision_);
    }
    return relocate(context, std::move(value));
}

void Catalan_Huvent_BSR_End(ExactFloat& P, ExactFloat& Q, std::uint64_t k) {
    const char* function = "Catalan_Huvent_BSR_End()";
    qmp::require_capacity(function, P.AL, kernel_words);
    qmp::require_capacity(function, Q.AL, kernel_words);

    // One more bit and Q takes a ninth word.
    if (!set_term_below<25>(P, Q, k) && !set_term_below<31>(P, Q, k)) {
        BasicInt p(P.base, P.AL);
        BasicInt q(Q.base, Q.AL);
        set_term(p, q, k);
        set_leaf(P, p);
        set_leaf(Q, q);
    }
    P.mp2(-6 * static_cast<std::int64_t>(k));
}

}  // namespace kelvara
