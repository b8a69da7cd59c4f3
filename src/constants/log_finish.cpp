// How a formula ends: the logarithms of the small primes that it still lacks.
#include "console/console.h"
#include "constants/log_search.h"

namespace kelvara {

namespace {

// The smallest basis set that has the prime, which is one of the 8 smallest.
std::uint64_t basis_size(std::uint64_t prime) {
    std::uint64_t size = smallest_log_basis;
    while (log_primes[size - 1] < prime) size++;
    return size;
}

std::size_t row_of(std::uint64_t prime) {
    return static_cast<std::size_t>(std::ranges::find(log_primes, prime) - log_primes.begin());
}

bool add_basis(LogTermList& terms, const LogTermList& queue, const LogBasis& basis) {
    std::array<std::int64_t, LogBasis::largest> sums = {};
    for (const auto& [prime, w] : queue.entries()) {
        const auto& row = basis.rows[row_of(prime)];
        for (std::size_t j = 0; j < basis.size; j++) sums[j] += row[j] * w;
    }
    for (std::size_t j = 0; j < basis.size; j++) {
        if (!terms.add(basis.x[j], sums[j])) return false;
    }
    return true;
}

bool shares_a_term(const LogTermList& terms, const LogFormula* excluded) {
    return excluded && std::ranges::any_of(terms.entries(), [&](const LogTermList::Entry& entry) {
               return excluded->has_term({entry.key, entry.value});
           });
}

}  // namespace

LogCandidate finished_log_formula(const LogTermList& terms, const ArcCothCosts& cost) {
    LogCandidate candidate = {0, terms};
    for (const auto& [x, c] : terms.entries()) {
        if (c != 0) candidate.cost += cost(x);
    }
    return candidate;
}

bool add_record(LogTermList& terms, const LogRecord& formula, std::int64_t multiple) {
    for (std::size_t i = 0; i < formula.count; i++) {
        if (!terms.add(formula.x[i], formula.c[i] * multiple)) return false;
    }
    return true;
}

LogCandidate finish_log_formula(const LogTermList& F, const LogTermList& Q, std::uint64_t base,
                                const LogSearchSetting& setting) {
    if (Q.empty()) return finished_log_formula(F, setting.cost);
    const LogTermList::Entry& last = Q.entries().back();
    if (last.key > log_primes[base - 1]) qmp::console::fatal_error("Non-base prime found in queue.");

    LogTermList terms = F;
    const LogRecord* record = setting.tables.formula_of(last.key);
    if (Q.entries().size() == 1 && last.value % 2 == 0 && record) {
        if (!add_record(terms, *record, last.value / 2)) return {};
        return finished_log_formula(terms, setting.cost);
    }
    if (!add_basis(terms, Q, setting.tables.basis(basis_size(last.key)))) return {};
    if (shares_a_term(terms, setting.excluded)) return {};
    return finished_log_formula(terms, setting.cost);
}

}  // namespace kelvara
