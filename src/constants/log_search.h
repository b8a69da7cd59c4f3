// The search for the cheapest Machin-like formula of ln n.
//
// A branch-and-bound search that replaces n, whose prime factors may be anything, by neighbours with small
// prime factors: ln v = ln(v + 1) - 2 ArcCoth(2 v + 1), and so on. Once only small primes are left, a basis
// set gives their logarithms. Pure but for the warnings named below; main thread only for these.
#pragma once

#include <array>
#include <cstdint>

#include "constants/log_formula.h"
#include "constants/log_tables.h"
#include "constants/log_term_list.h"

namespace kelvara {

// What a search finds: formula terms (argument, coefficient), and what they cost.
struct LogCandidate {
    double cost = no_formula_cost;
    LogTermList terms;

    bool found() const { return cost < no_formula_cost; }
};

// arccoth_cost for one precision, which remembers the arguments that come again and again.
class ArcCothCosts {
  public:
    ArcCothCosts(double X) : X_(X) {}
    double operator()(std::uint64_t x) const {
        Known& known = known_[x % size];
        if (known.x != x) known = {x, arccoth_cost(x, X_)};
        return known.cost;
    }

  private:
    static constexpr std::size_t size = 251;

    struct Known {
        std::uint64_t x = 0;  // no argument
        double cost = 0;
    };
    double X_;
    mutable std::array<Known, size> known_;
};

// The circumstances of one search.
struct LogSearchSetting {
    ArcCothCosts cost;  // made from the precision in natural units
    const LogTables& tables;
    const LogFormula* excluded;  // the formula to differ from; null for none
};

// Finds a formula of n >= 1 for a precision of X natural units and returns its cost: no_formula_cost or more
// when there is none. With a formula to exclude, the secondary tables serve, and what is found differs from
// it in every term that the search itself chooses. n = 0 ends the program ("Error: Log(0)"). Prints a warning
// when a formula of the tables is beaten.
double search_log_formula(LogFormula& out, std::uint64_t n, double X, const LogFormula* exclude);
// The same over given tables.
double search_log_formula(LogFormula& out, std::uint64_t n, const LogSearchSetting& setting);

// The cheapest formula of n >= 1 whose base are the `base` (4 .. 8) smallest primes.
LogCandidate heuristic_search(std::uint64_t n, std::uint64_t base, const LogSearchSetting& setting);

// Completes a formula whose terms F leave (w / 2) ln p to be added for every entry (p, w) of the queue Q.
// Ends the program ("Non-base prime found in queue.") when Q holds a prime beyond the `base` smallest ones.
LogCandidate finish_log_formula(const LogTermList& F, const LogTermList& Q, std::uint64_t base,
                                const LogSearchSetting& setting);

// The terms as they are, with their cost.
LogCandidate finished_log_formula(const LogTermList& terms, const ArcCothCosts& cost);

// Adds `multiple` times a formula of the tables. False when there is no room for it; the terms are then of no
// use.
bool add_record(LogTermList& terms, const LogRecord& formula, std::int64_t multiple);

}  // namespace kelvara
