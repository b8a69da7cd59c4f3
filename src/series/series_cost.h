// How a series grows and shrinks, as its splits and plans need to know it.
#pragma once

namespace qmp {

// Natural logarithms throughout. ln Q(0, x) is taken as q_linear x + q_factorial ln(x!).
struct SeriesCost {
    double log_ratio;       // of the factor by which the terms shrink per term
    double words_per_term;  // log_ratio in words: the precision that one term contributes
    double q_linear;
    double q_factorial;

    static SeriesCost of(double log_ratio, double q_linear, double q_factorial);
};

// Stirling's estimate of ln(x!), 0 for x <= 1.
double log_factorial(double x);

}  // namespace qmp
