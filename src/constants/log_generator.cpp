#include "constants/log_generator.h"

#include <map>

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "constants/argument_constant.h"
#include "constants/log_search.h"
#include "constants/log_verification.h"
#include "constants/size_rules.h"
#include "platform/timers.h"

namespace kelvara {

namespace console = qmp::console;

namespace {

const char* generate_one(LogFormula& out, const char* title, std::uint64_t n, double X,
                         const LogFormula* exclude) {
    console::write(title, 'w');
    const qmp::CounterTimePoint start = qmp::now();
    const double cost = search_log_formula(out, n, X, exclude);
    console::println(console::format_fixed(qmp::seconds_between(qmp::now(), start), 3) + " seconds");
    return log_formula_failure(out, n, cost);
}

}  // namespace

const char* log_formula_failure(const LogFormula& formula, std::uint64_t n, double cost) {
    if (cost >= no_formula_cost) return "Unable to derive formula.";
    if (!verify_log_formula(formula, n)) return "Unable to verify correctness of formula.";
    return nullptr;
}

const char* generate_log_formulas(LogFormulas& out, std::uint64_t n, double X) {
    static std::map<std::uint64_t, LogFormulas> generated;
    const auto known = generated.find(n);
    if (known != generated.end()) {
        out = known->second;
        return nullptr;
    }
    const char* failure = generate_one(out.primary, "Generating Primary Formula...       ", n, X, nullptr);
    if (!failure) {
        failure = generate_one(out.secondary, "Generating Secondary Formula...     ", n, X, &out.primary);
    }
    if (!failure) generated.emplace(n, out);
    return failure;
}

LogFormulas log_formulas(std::uint64_t n, double X) {
    LogFormulas formulas;
    if (const char* failure = generate_log_formulas(formulas, n, X)) {
        console::println("Error", 'R');
        console::println(failure);
        console::fatal_error("Please report this as a bug.");
    }
    return formulas;
}

void run_log_formula_screen() {
    console::println("\nLog(n)", 'w');
    const std::uint64_t n = read_argument("n = ", {0, UINT64_MAX});
    console::println("\nDecimal Digits", 'w');
    const std::uint64_t digits =
        console::read_digit_count_in_range("dec = ", smallest_digits, largest_digits, 'T');
    const double X = log_units(precision_for_digits(digits));

    const LogFormulas formulas = log_formulas(n, X);
    console::println("Primary Formula:", 'w');
    print_log_formula(n, formulas.primary, X);
    console::println("Secondary Formula:", 'w');
    print_log_formula(n, formulas.secondary, X);
}

}  // namespace kelvara
