#include "constants/log_formula.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "series/series_constants.h"
#include "series/series_cost.h"

namespace kelvara {

namespace console = qmp::console;

bool LogFormula::operator==(const LogFormula& other) const {
    return std::ranges::equal(terms(), other.terms());
}

bool LogFormula::has_argument(std::uint64_t x) const {
    return std::ranges::any_of(terms(), [x](const LogTerm& term) { return term.x == x; });
}

bool LogFormula::has_term(const LogTerm& term) const {
    return std::ranges::find(terms(), term) != terms().end();
}

double log_units(std::uint64_t precision) {
    return static_cast<double>(precision) * qmp::series_constants().ln_word;
}

// The series takes t terms; its denominator has about t ln 2 + ln(t!) units beyond the precision, which three
// numbers share. The last part stands for the division.
double arccoth_cost(std::uint64_t x, double X) {
    const double t = X / std::log(static_cast<double>(x));
    const double beyond = t * qmp::series_constants().ln_2 + qmp::log_factorial(t);
    return 3 * beyond + 2 * X + 0.7813 * X;
}

double log_formula_cost(std::span<const LogTerm> terms, double X) {
    double cost = 0;
    for (const LogTerm& term : terms) {
        if (term.c != 0) cost += arccoth_cost(term.x, X);
    }
    return cost;
}

void print_log_formula(std::uint64_t n, const LogFormula& formula, double X) {
    console::println("Log[" + std::to_string(n) + "] = ");
    for (const LogTerm& term : formula.terms()) {
        console::println(std::to_string(term.c) + " * ArcCoth[" + std::to_string(term.x) + "]");
    }
    console::newline();
    console::println("        Cost = " + console::format_fixed(log_formula_cost(formula.terms(), X), 3));
}

}  // namespace kelvara
