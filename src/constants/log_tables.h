// The formulas and relations that logarithms are put together from.
//
// Static data. The primary tables hold the cheapest that is known; the secondary ones make a formula that
// shares no term with the primary one.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace kelvara {

// The primes up to 251, ascending: those that relations are about. The first few are a search's base.
constexpr std::size_t log_prime_count = 54;
constexpr std::array<std::uint64_t, log_prime_count> log_primes = [] {
    std::array<std::uint64_t, log_prime_count> primes = {};
    std::size_t found = 0;
    for (std::uint64_t n = 2; found < log_prime_count; n++) {
        const auto known = primes.begin() + static_cast<std::ptrdiff_t>(found);
        if (std::none_of(primes.begin(), known, [n](std::uint64_t p) { return n % p == 0; })) {
            primes[found++] = n;
        }
    }
    return primes;
}();
static_assert(log_primes.back() == 251);

// As a formula of the number `key`: ln key = sum of c[i] ArcCoth(x[i]) over the `count` terms.
//
// As a relation of the prime `key`: 2 ln key = c[0] ln((x[0] + 1) / (x[0] - 1)) + sum of c[j] ln x[j] over
// j = 1 .. count, where x[1] < x[2] < ... are smaller primes.
struct LogRecord {
    static constexpr std::size_t slots = 10;

    std::uint64_t key;
    std::uint64_t count;
    std::array<std::uint64_t, slots> x;
    std::array<std::int64_t, slots> c;
    double measure;  // the sum of 1 / ln x over the arguments of ArcCoth

    // The largest of a relation's smaller primes.
    std::uint64_t largest_prime() const { return x[count]; }
};

// ln p = sum over j of 2 row(p)[j] ArcCoth(x[j]) for each of the first `size` primes p.
struct LogBasis {
    static constexpr std::size_t largest = 8;

    std::uint64_t size;
    std::array<std::uint64_t, largest> x;
    std::array<std::array<std::int64_t, largest>, largest> rows;  // in the order of the primes
};

constexpr std::uint64_t smallest_log_basis = 4;
constexpr std::uint64_t largest_log_basis = LogBasis::largest;

struct LogTables {
    std::span<const LogRecord> formulas;   // sorted by key
    std::span<const LogBasis> bases;       // of the sizes 4 .. 8
    std::span<const LogRecord> relations;  // sorted by key, then by largest prime; record 0 is empty

    const LogBasis& basis(std::uint64_t size) const { return bases[size - smallest_log_basis]; }
    // Null when there is none.
    const LogRecord* formula_of(std::uint64_t n) const;
    std::span<const LogRecord> relations_of(std::uint64_t prime) const;
};

const LogTables& primary_log_tables();
const LogTables& secondary_log_tables();

// The generated part of the tables.
extern const std::span<const LogRecord> primary_log_relations;
extern const std::span<const LogRecord> secondary_log_relations;

}  // namespace kelvara
