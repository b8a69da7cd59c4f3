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

// How often p divides v, which is left without it.
std::int64_t divide_out(std::uint64_t& v, std::uint64_t p) {
    std::int64_t times = 0;
    for (; v % p == 0; v /= p) times++;
    return times;
}

class Heuristic {
  public:
    Heuristic(std::uint64_t base, const LogSearchSetting& setting) : base_(base), setting_(setting) {}

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

    // Whether one of the primes from number `first` up to `end` divides v.
    static bool has_prime(std::uint64_t v, std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end && v >= log_primes[i]; i++) {
            if (v % log_primes[i] == 0) return true;
        }
        return false;
    }

    LogCandidate finish(const State& s) const { return finish_log_formula(s.F, s.Q, base_, setting_); }

    // Moves the base primes of the cofactor to the queue. False when the queue is full.
    bool reduce(State& s) const {
        for (std::size_t i = 0; i < base_ && s.v >= log_primes[i]; i++) {
            const std::int64_t times = divide_out(s.v, log_primes[i]);
            if (times > 0 && !s.Q.add(log_primes[i], 2 * times)) return false;
        }
        return true;
    }

    // Every state has to divide something out of its cofactor: so cofactors shrink, and the search ends.
    LogCandidate state_step(const State& before, double bound) const {
        if (before.g > bound || !has_prime(before.v, 0, base_)) return {};
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
        const double g = s.g + arccoth_cost(x, setting_.X);
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
        if (before.g > bound || !has_prime(before.v, base_, log_prime_count)) return {};
        State s = before;
        for (std::size_t i = base_; i < log_prime_count && s.v >= log_primes[i]; i++) {
            if (s.v % log_primes[i] == 0) use_relation(s, log_primes[i]);
        }
        if (s.v == before.v || s.g > bound) return {};
        if (s.v == 1) return finish(s);
        return replacement_moves(s, bound);
    }

    // Replaces the prime p in the cofactor by a relation; leaves everything as it is when there is none that
    // the base and the lists allow.
    void use_relation(State& s, std::uint64_t p) const {
        const LogRecord* relation = widest_relation(p);
        if (!relation) return;
        State after = s;
        const std::int64_t times = divide_out(after.v, p);
        if (!after.F.add(relation->x[0], relation->c[0] * times)) return;
        for (std::size_t j = 1; j <= relation->count; j++) {
            if (!after.Q.add(relation->x[j], relation->c[j] * times)) return;
        }
        const double cost = arccoth_cost(relation->x[0], setting_.X);
        if (cost >= no_formula_cost) return;
        after.g += cost;
        s = after;
    }

    // The last of the prime's relations within the base.
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
    if (record && add_record(best.terms, *record, 1)) best = finished_log_formula(best.terms, setting.X);
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
