#include "constants/log_search.h"

#include <algorithm>

#include "console/console.h"

namespace kelvara {

namespace {

// ln n = sum of c ArcCoth(x) over F + sum of (w / 2) ln p over Q + ln v, where F costs g.
struct State {
    LogTermList F;
    LogTermList Q;
    std::uint64_t v;
    double g;
};

// A term that replaces ln v by the logarithm of a neighbour.
struct Replacement {
    std::uint64_t x;
    std::int64_t c;
    std::uint64_t v;
};

constexpr std::size_t replacement_count = 4;

// v is too small for some of them: x = 1 and a cofactor of 0 are refused by who uses them.
Replacement replacement(std::size_t move, std::uint64_t v) {
    switch (move) {
        case 0:
            return {2 * v + 1, -2, v + 1};
        case 1:
            return {2 * v - 1, 2, v - 1};
        case 2:
            return {v + 1, -2, v + 2};
        default:
            return {v - 1, 2, v - 2};
    }
}

// Whether a prime divides v, without a division: modulo 2^64 the multiples of an odd p are p times 0 ..
// limit, so the product with the inverse of p is at most the limit for them alone.
class DivisionTest {
  public:
    constexpr explicit DivisionTest(std::uint64_t odd) : limit_(UINT64_MAX / odd) {
        for (int i = 0; i < 6; i++) inverse_ *= 2 - odd * inverse_;
    }
    constexpr DivisionTest() = default;
    constexpr bool divides(std::uint64_t v) const { return v * inverse_ <= limit_; }

  private:
    std::uint64_t inverse_ = 1;
    std::uint64_t limit_ = 0;
};

constexpr auto division_tests = [] {
    std::array<DivisionTest, log_prime_count> tests;
    for (std::size_t i = 1; i < log_prime_count; i++) tests[i] = DivisionTest(log_primes[i]);
    return tests;
}();

// For prime number i and v > 0.
bool prime_divides(std::size_t i, std::uint64_t v) {
    return i == 0 ? v % 2 == 0 : division_tests[i].divides(v);
}

// How often prime number i divides v > 0, which is left without it.
std::int64_t divide_out(std::uint64_t& v, std::size_t i) {
    std::int64_t times = 0;
    for (; prime_divides(i, v); v /= log_primes[i]) times++;
    return times;
}

class Heuristic {
  public:
    Heuristic(std::uint64_t base, const LogSearchSetting& setting) : base_(base), setting_(setting) {
        for (std::size_t i = base; i < log_prime_count; i++) relations_[i] = widest_relation(log_primes[i]);
    }

    LogCandidate run(std::uint64_t n) const {
        const State start = {{}, {}, n, 0};
        LogCandidate best = state_step(start, no_formula_cost);
        keep_cheaper(best, relation_move(start, best.cost), best.cost);
        for (std::size_t move = 0; move < replacement_count; move++) {
            keep_cheaper(best, replacement_move(move, start, best.cost), best.cost);
        }
        return best;
    }

  private:
    static void keep_cheaper(LogCandidate& best, const LogCandidate& found, double bound) {
        if (found.cost < best.cost && found.cost < bound) best = found;
    }

    // The number of the first prime from `first` up to `end` that divides v; `end` when none does.
    static std::size_t first_prime(std::uint64_t v, std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end && v >= log_primes[i]; i++) {
            if (prime_divides(i, v)) return i;
        }
        return end;
    }

    LogCandidate finish(const State& s) const { return finish_log_formula(s.F, s.Q, base_, setting_); }

    // Moves the base primes of the cofactor to the queue. False when the queue is full.
    bool reduce(State& s) const {
        for (std::size_t i = 0; i < base_ && s.v >= log_primes[i]; i++) {
            const std::int64_t times = divide_out(s.v, i);
            if (times > 0 && !s.Q.add(log_primes[i], 2 * times)) return false;
        }
        return true;
    }

    // Every state has to divide something out of its cofactor: so cofactors shrink, and the search ends.
    LogCandidate state_step(const State& before, double bound) const {
        if (before.g > bound || first_prime(before.v, 0, base_) == base_) return {};
        State s = before;
        if (!reduce(s)) return {};
        if (s.v == 1) return finish(s);
        LogCandidate best = replacement_moves(s, bound);
        keep_cheaper(best, relation_move(s, std::min(bound, best.cost)), bound);
        return best;
    }

    LogCandidate replacement_moves(const State& s, double bound) const {
        LogCandidate best = replacement_move(0, s, bound);
        if (best.cost > bound) best = {};
        keep_cheaper(best, replacement_move(1, s, bound), bound);
        for (std::size_t move = 2; move < replacement_count; move++) {
            keep_cheaper(best, replacement_move(move, s, std::min(bound, best.cost)), bound);
        }
        return best;
    }

    LogCandidate replacement_move(std::size_t move, const State& s, double bound) const {
        if (s.g > bound || s.v > log_argument_limit) return {};
        const auto [x, c, v] = replacement(move, s.v);
        if (x < 2 || x >= log_argument_limit || v == 0) return {};
        if (setting_.excluded && setting_.excluded->has_argument(x)) return {};
        const double g = s.g + setting_.cost(x);
        if (g > bound) return {};
        State after = {s.F, s.Q, v, g};
        if (!after.F.add(x, c)) return {};
        return next(after, bound);
    }

    LogCandidate next(const State& s, double bound) const {
        LogCandidate best = state_step(s, bound);
        if (best.cost > bound) best = {};
        keep_cheaper(best, relation_move(s, bound), bound);
        return best;
    }

    LogCandidate relation_move(const State& before, double bound) const {
        if (before.g > bound) return {};
        std::size_t i = first_prime(before.v, base_, log_prime_count);
        if (i == log_prime_count) return {};
        State s = before;
        for (; i < log_prime_count; i = first_prime(s.v, i + 1, log_prime_count)) {
            if (relations_[i]) use_relation(s, i);
        }
        if (s.v == before.v || s.g > bound) return {};
        if (s.v == 1) return finish(s);
        return replacement_moves(s, bound);
    }

    // Replaces prime number i in the cofactor by its relation; leaves everything as it is when the lists have
    // no room for that.
    void use_relation(State& s, std::size_t i) const {
        const LogRecord& relation = *relations_[i];
        State after = s;
        const std::int64_t times = divide_out(after.v, i);
        if (!after.F.add(relation.x[0], relation.c[0] * times)) return;
        for (std::size_t j = 1; j <= relation.count; j++) {
            if (!after.Q.add(relation.x[j], relation.c[j] * times)) return;
        }
        const double cost = setting_.cost(relation.x[0]);
        if (cost >= no_formula_cost) return;
        after.g += cost;
        s = after;
    }

    // The last of a prime's relations within the base; null when there is none.
    const LogRecord* widest_relation(std::uint64_t p) const {
        const LogRecord* chosen = nullptr;
        for (const LogRecord& relation : setting_.tables.relations_of(p)) {
            if (relation.largest_prime() > log_primes[base_ - 1]) break;
            if (relation.x[0] < log_argument_limit) chosen = &relation;
        }
        return chosen;
    }

    std::uint64_t base_;
    const LogSearchSetting& setting_;
    std::array<const LogRecord*, log_prime_count> relations_ = {};  // of the primes beyond the base
};

LogFormula without_zeros(const LogTermList& terms) {
    LogFormula formula;
    for (const auto& [x, c] : terms.entries()) {
        if (c != 0) formula.slots[formula.count++] = {x, c};
    }
    return formula;
}

}  // namespace

LogCandidate heuristic_search(std::uint64_t n, std::uint64_t base, const LogSearchSetting& setting) {
    return Heuristic(base, setting).run(n);
}

double search_log_formula(LogFormula& out, std::uint64_t n, const LogSearchSetting& setting) {
    out = {};
    if (n == 0) qmp::console::fatal_error("Error: Log(0)");
    if (n == 1) return 0;

    LogCandidate best;
    const LogRecord* record = setting.tables.formula_of(n);
    if (record && add_record(best.terms, *record, 1)) best = finished_log_formula(best.terms, setting.cost);
    const double table_cost = best.cost;
    for (std::uint64_t base = smallest_log_basis; base <= largest_log_basis; base++) {
        const LogCandidate found = heuristic_search(n, base, setting);
        if (found.cost < best.cost) best = found;
    }
    if (table_cost < no_formula_cost && best.cost < table_cost) {
        qmp::console::print_warning("The heuristic has found a better formula than the table entry.");
    }
    if (best.found()) out = without_zeros(best.terms);
    return best.cost;
}

double search_log_formula(LogFormula& out, std::uint64_t n, double X, const LogFormula* exclude) {
    const LogTables& tables = exclude ? secondary_log_tables() : primary_log_tables();
    return search_log_formula(out, n, {X, tables, exclude});
}

}  // namespace kelvara
