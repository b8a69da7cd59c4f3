#include "series/series_cost.h"

#include <cmath>

#include "series/series_constants.h"

namespace qmp {

SeriesCost SeriesCost::of(double log_ratio, double q_linear, double q_factorial) {
    return {log_ratio, log_ratio * series_constants().words_per_unit, q_linear, q_factorial};
}

double log_factorial(double x) {
    // 0.5 + ln(2 pi) / 2
    constexpr double offset = 1.4189385332046727;
    return x <= 1 ? 0 : (x + 0.5) * (std::log(x) - 1) + offset;
}

}  // namespace qmp
