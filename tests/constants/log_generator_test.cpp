// The generator of formulas for logarithms: its texts, what it keeps, and its screen.
#include "constants/log_generator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "console/format.h"
#include "constants/size_rules.h"
#include "support/console.h"
#include "support/fatal.h"

namespace kelvara {
namespace {

using kelvara_test::FedInput;
using kelvara_test::printed_by;

const double units = log_units(1000);

// Numbers in the text, as seconds are, become '#'.
std::string without_times(std::string text) {
    for (std::size_t at = 0; (at = text.find(" seconds", at)) != std::string::npos; at++) {
        std::size_t begin = at;
        while (begin > 0 && std::string("0123456789.").find(text[begin - 1]) != std::string::npos) begin--;
        EXPECT_GE(at - begin, 5u);
        EXPECT_EQ(text[at - 4], '.');
        text.replace(begin, at - begin, "#");
        at = begin + 1;
    }
    return text;
}

constexpr const char* generating =
    "Generating Primary Formula...       # seconds\n"
    "Generating Secondary Formula...     # seconds\n";

std::string printed_formula(const char* head, std::uint64_t precision, const LogFormula& formula) {
    std::string text = head;
    for (const LogTerm& term : formula.terms()) {
        text += std::to_string(term.c) + " * ArcCoth[" + std::to_string(term.x) + "]\n";
    }
    const double cost = log_formula_cost(formula.terms(), log_units(precision));
    return text + "\n        Cost = " + qmp::console::format_fixed(cost, 3) + "\n";
}

TEST(LogFormulaCost, FollowsTheModel) {
    // t = 1000, so s = 1000 ln 2 + (ln 1000 - 1) 1000.5 + 1.4189...
    const double X = 1000 * std::log(26.0);
    const double s = 1000 * std::log(2.0) + (std::log(1000.0) - 1) * 1000.5 + 1.4189385332046727;
    EXPECT_NEAR(arccoth_cost(26, X), 3 * s + 2.7813 * X, 1e-8 * X);
    // One term and less: no factorial.
    const double short_X = 0.5 * std::log(26.0);
    EXPECT_NEAR(arccoth_cost(26, short_X), 1.5 * std::log(2.0) + 2.7813 * short_X, 1e-12);
    const LogTerm terms[] = {{26, 18}, {4801, 0}, {8749, -8}};
    EXPECT_EQ(log_formula_cost(terms, X), arccoth_cost(26, X) + arccoth_cost(8749, X));
    EXPECT_EQ(log_formula_cost({}, X), 0);
    EXPECT_NEAR(log_units(100), 4436.141955583649980, 1e-9);
}

TEST(LogFormulas, ArePrinted) {
    LogFormula formula;
    formula.count = 2;
    formula.slots[0] = {3, 4};
    formula.slots[1] = {4294967295, -2};
    const double X = log_units(7);
    EXPECT_EQ(printed_by([&] { print_log_formula(2147483647, formula, X); }),
              "Log[2147483647] = \n4 * ArcCoth[3]\n-2 * ArcCoth[4294967295]\n\n        Cost = " +
                  qmp::console::format_fixed(log_formula_cost(formula.terms(), X), 3) + "\n");
}

TEST(LogGenerator, SaysWhatItDoesOnce) {
    LogFormulas first;
    const std::string text =
        printed_by([&] { EXPECT_EQ(generate_log_formulas(first, 1234567, units), nullptr); });
    EXPECT_EQ(without_times(text), generating);
    EXPECT_FALSE(first.primary == first.secondary);

    // From then on it knows the number, for every precision.
    LogFormulas again;
    EXPECT_EQ(printed_by([&] { EXPECT_EQ(generate_log_formulas(again, 1234567, 100 * units), nullptr); }),
              "");
    EXPECT_EQ(again.primary, first.primary);
    EXPECT_EQ(again.secondary, first.secondary);
    EXPECT_EQ(printed_by([&] { again = log_formulas(1234567, units); }), "");
    EXPECT_EQ(again.primary, first.primary);
}

TEST(LogGenerator, OneHasEmptyFormulas) {
    LogFormulas found;
    EXPECT_EQ(without_times(printed_by([&] { EXPECT_EQ(generate_log_formulas(found, 1, units), nullptr); })),
              generating);
    EXPECT_EQ(found.primary.count, 0u);
    EXPECT_EQ(found.secondary.count, 0u);
}

TEST(LogGenerator, Failures) {
    constexpr std::uint64_t large_prime = 18446744073709551557u;
    LogFormulas found;
    // A failure is no formula to keep.
    for (int i = 0; i < 2; i++) {
        EXPECT_EQ(without_times(printed_by([&] {
                      EXPECT_STREQ(generate_log_formulas(found, large_prime, units),
                                   "Unable to derive formula.");
                  })),
                  "Generating Primary Formula...       # seconds\n");
    }
    LogFormula wrong;
    wrong.count = 1;
    wrong.slots[0] = {5, 2};
    EXPECT_STREQ(log_formula_failure(wrong, 2, 100), "Unable to verify correctness of formula.");
    EXPECT_STREQ(log_formula_failure(wrong, 2, no_formula_cost), "Unable to derive formula.");
    wrong.slots[0] = {3, 2};
    EXPECT_EQ(log_formula_failure(wrong, 2, 100), nullptr);
}

TEST(LogFormulaScreen, AsksAndPrints) {
    // A number of this test's own: formulas that were found before are not looked for again.
    const std::string text = printed_by([] {
        FedInput input("104729\n99\n1,000\n");
        run_log_formula_screen();
    });
    const std::uint64_t precision = precision_for_digits(1000);
    const LogFormulas found = log_formulas(104729, log_units(precision));
    const std::string expected =
        std::string("\nLog(n)\nn = \nDecimal Digits\ndec = dec = ") + generating + "Primary Formula:\n" +
        printed_formula("Log[104729] = \n", precision, found.primary) + "Secondary Formula:\n" +
        printed_formula("Log[104729] = \n", precision, found.secondary);
    EXPECT_EQ(without_times(text), expected);
}

#if GTEST_HAS_DEATH_TEST
TEST(LogFormulaScreenFatalTest, Zero) {
    // What is no number counts as 0.
    for (const char* answer : {"0\n100\n", "zero\n100\n"}) {
        EXPECT_FATAL(
            {
                FedInput input(answer);
                run_log_formula_screen();
            },
            "Error: Log\\(0\\)");
    }
}

TEST(LogFormulaScreenFatalTest, NoFormula) {
    EXPECT_FATAL(log_formulas(18446744073709551557u, units),
                 " seconds\nError\nUnable to derive formula\\.\n\n\nPlease report this as a bug\\.");
}
#endif

}  // namespace
}  // namespace kelvara
