#include "constants/catalan_huvent.h"

#include <iterator>

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

// From k^16 down to 1. The last four are subtracted.
constexpr Word coefficients[] = {
    4636372233093120,   37721048963088384,  140614334152704000, 318025249742389248, 486920573914447872,
    532937589964406784, 428868733241327616, 256653109156773888, 113872382317283328, 36670081182465024,
    8098743309464448,   1029713994232704,   5572409156528,      24153149527360,     4419704161120,
    360406957080,       11728430425,
};
constexpr int added_coefficients = 13;

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

    BasicInt q(Q.base, Q.AL);
    leaf_set(q, 1);
    for (const Word factor : {2 * k + 1, 4 * k + 1, 4 * k + 3, 6 * k + 1, 6 * k + 5, 12 * k + 1, 12 * k + 5,
                              12 * k + 7, 12 * k + 11}) {
        leaf_mul(q, factor);
        leaf_mul(q, factor);
    }
    set_leaf(Q, q);

    BasicInt p(P.base, P.AL);
    leaf_set(p, coefficients[0]);
    for (int i = 1; i < static_cast<int>(std::size(coefficients)); i++) {
        leaf_mul(p, k);
        if (i < added_coefficients) {
            leaf_add(p, coefficients[i]);
        } else {
            leaf_sub(p, coefficients[i]);
        }
    }
    set_leaf(P, p);
    P.mp2(-6 * static_cast<std::int64_t>(k));
}

}  // namespace kelvara
