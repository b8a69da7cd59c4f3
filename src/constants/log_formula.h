// Machin-like formulas of logarithms: ln n = sum of c_i ArcCoth(x_i).
//
// Costs estimate the work of summing the terms by binary splitting, for a precision of X units of the natural
// logarithm; they only serve to compare formulas. Pure functions but for the printing; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace kelvara {

struct LogTerm {
    std::uint64_t x;  // at least 2
    std::int64_t c;

    bool operator==(const LogTerm&) const = default;
};

struct LogFormula {
    static constexpr std::size_t capacity = 32;

    std::uint64_t count = 0;
    std::array<LogTerm, capacity> slots = {};

    // Sorted by argument. Without zero coefficients in a finished formula.
    std::span<const LogTerm> terms() const { return {slots.data(), count}; }

    bool operator==(const LogFormula& other) const;
    bool has_argument(std::uint64_t x) const;
    bool has_term(const LogTerm& term) const;
};

static_assert(sizeof(LogFormula) == 8 + 16 * LogFormula::capacity);

// Two formulas of one number, each a check of the other.
struct LogFormulas {
    LogFormula primary;
    LogFormula secondary;
};

// A cost from here on means that there is no formula.
constexpr double no_formula_cost = 0x1p100;

// The series of this class hold x^2 in one word.
constexpr std::uint64_t log_argument_limit = std::uint64_t{1} << 32;

// X for a precision in words.
double log_units(std::uint64_t precision);

double arccoth_cost(std::uint64_t x, double X);
// Over the terms with a coefficient.
double log_formula_cost(std::span<const LogTerm> terms, double X);

// The formula on the console, a line for each term, and its cost.
void print_log_formula(std::uint64_t n, const LogFormula& formula, double X);

}  // namespace kelvara
