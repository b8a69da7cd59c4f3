#include "constants/euler_gamma_series_c.h"

#include <algorithm>
#include <cmath>

#include "constants/euler_gamma_terms.h"
#include "errors/check.h"
#include "series/leaf_bisection.h"
#include "series/leaf_int.h"
#include "series/series_constants.h"

namespace kelvara {

using qmp::BasicInt;
using qmp::ExactFloat;
using qmp::leaf_mul;
using qmp::leaf_set;
using qmp::Word;

namespace {

constexpr std::uint64_t r_words = 3;
constexpr std::uint64_t q_words = 6;
constexpr std::uint64_t p_words = 3;
constexpr std::uint64_t leaf_terms = 16;

// The claimed fall, in units of the natural logarithm, is at most this part of 2n.
constexpr double largest_claim = 1.0 / 32;

int shift_of(std::int32_t exponent) {
    return 2 * exponent + 5;
}

struct Kernel {
    static constexpr std::uint64_t words = q_words;
    static constexpr std::uint64_t longest_range = leaf_terms - 1;
    std::int32_t exponent;

    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        EulerGamma_BMR_seriesC_BSR_End1(P, Q, R, exponent, k);
    }
};

// On average a term is smaller than the one before by e^2.
qmp::SeriesCost cost_of(std::int32_t exponent) {
    return qmp::SeriesCost::of(2, shift_of(exponent) * qmp::series_constants().ln_2, 1);
}

}  // namespace

EulerGammaSeriesC::EulerGammaSeriesC(std::int32_t exponent)
    : BSS_P2B3_Type0(false, 22, leaf_terms, cost_of(exponent)),
      exponent_(exponent),
      last_(std::ldexp(2.0, exponent)) {}

double EulerGammaSeriesC::decay(double x) const {
    const double ln_last = (exponent_ + 1) * qmp::series_constants().ln_2;
    return std::max(0.0, 2 * (x * ln_last - qmp::log_factorial(x)));
}

double EulerGammaSeriesC::DecayBetween(double a, double b) const {
    return std::max(decay(b) - decay(a), std::min(b - a, largest_claim * last_));
}

std::uint64_t EulerGammaSeriesC::TermsForPrecision(std::uint64_t p) const {
    const double target = static_cast<double>(p) * qmp::series_constants().ln_word + 1;
    std::uint64_t low = 0;
    auto high = static_cast<std::uint64_t>(std::min(last_, 0x1p63));
    while (high - low > 1) {
        const std::uint64_t m = low + (high - low) / 2;
        (decay(static_cast<double>(m)) >= target ? high : low) = m;
    }
    return high;
}

std::uint64_t EulerGammaSeriesC::PrecisionAtIndex(double index, std::uint64_t p) const {
    const double words = static_cast<double>(p) - decay(index) * qmp::series_constants().words_per_unit;
    return static_cast<std::uint64_t>(std::llrint(std::max(0.0, words) + 1.5));
}

void EulerGammaSeriesC::BSR_End(ExactFloat& P, ExactFloat& Q, ExactFloat& R, const qmp::MultiplyContext&,
                                std::uint64_t a, std::uint64_t b) const {
    const int shift = shift_of(exponent_);
    const bool falling = static_cast<double>(b) <= last_;
    if (falling && shift <= EulerGammaSeriesCTerms::longest_shift &&
        qmp::leaf::sum_leaf<23, 31>(EulerGammaSeriesCTerms{shift}, P, Q, R, a, b)) {
        return;
    }
    qmp::LeafOutputs out = {{P.base, P.AL}, {Q.base, Q.AL}, {R.base, R.AL}};
    qmp::leaf_bisect(Kernel{exponent_}, alternating, out, a, b);
    set_leaf(P, out.P);
    set_leaf(Q, out.Q);
    set_leaf(R, out.R);
}

void EulerGamma_BMR_seriesC_BSR_End1(BasicInt& P, BasicInt& Q, BasicInt& R, std::int32_t exponent,
                                     std::uint64_t k) {
    const char* function = "EulerGamma_BMR_seriesC_BSR_End1()";
    qmp::require_capacity(function, R.AL, r_words);
    qmp::require_capacity(function, Q.AL, q_words);
    qmp::require_capacity(function, P.AL, p_words);
    const Word odd = 2 * k - 1;
    leaf_set(R, odd);
    leaf_mul(R, odd);
    leaf_mul(R, odd);
    P.L = R.L;
    P.hash = R.hash;
    std::copy_n(R.T, R.L, P.T);
    leaf_set(Q, k);
    for (int shift = shift_of(exponent); shift > 0; shift -= 63) {
        leaf_mul(Q, Word{1} << std::min(shift, 63));
    }
}

}  // namespace kelvara
