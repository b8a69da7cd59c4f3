#include "series/binary_splitting_series.h"

#include <algorithm>
#include <cmath>

#include "errors/exception.h"
#include "series/series_constants.h"

namespace qmp {

std::uint64_t BinarySplittingSeries::PrecisionAtIndex(double, std::uint64_t) const {
    throw StringException("BinarySplittingSeries::PrecisionAtIndex()", "Required to use ASR.");
}

std::uint64_t BinarySplittingSeries::split(std::uint64_t a, std::uint64_t b) const {
    return b - a > split_by_cost_above ? find_split(*this, a, b) : (a + b) >> 1;
}

std::uint64_t BinarySplittingSeries::cost_split(std::uint64_t a, std::uint64_t b) const {
    return find_split(*this, a, b);
}

std::uint64_t find_split(const BinarySplittingSeries& series, std::uint64_t a, std::uint64_t b) {
    const auto size = [&](std::uint64_t x) { return series.SizeAtIndex(static_cast<double>(x)); };
    const double target = (size(a) + size(b)) * 0.5;
    std::uint64_t low = a;
    std::uint64_t high = b;
    while (high - low > 1) {
        const std::uint64_t m = (low + high) >> 1;
        (target > size(m) ? low : high) = m;
    }
    return high;
}

std::uint64_t CostedSeries::TermsForPrecision(std::uint64_t p) const {
    return static_cast<std::uint64_t>(
        std::llrint(static_cast<double>(p) * series_constants().ln_word / psr_cost.log_ratio + 1.5));
}

std::uint64_t CostedSeries::PrecisionAtIndex(double index, std::uint64_t p) const {
    const double words = std::max(0.0, static_cast<double>(p) - index * cost.words_per_term);
    return static_cast<std::uint64_t>(std::llrint(words + 1.5));
}

double CostedSeries::SizeAtIndex(double x) const {
    return cost.q_linear * x + cost.q_factorial * log_factorial(x);
}

double CostedSeries::SizeAtIndexPSR(const double& x) const {
    return psr_cost.q_linear * x + psr_cost.q_factorial * log_factorial(x);
}

}  // namespace qmp
