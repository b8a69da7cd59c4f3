// The search for formulas: what it finds is right for every number, and the two formulas of one differ.
#include "constants/log_search.h"

#include <gtest/gtest.h>

#include <vector>

#include "constants/log_verification.h"
#include "support/console.h"
#include "support/fatal.h"
#include "support/random_words.h"
#include "support/sanitized.h"

namespace kelvara {
namespace {

using kelvara_test::printed_by;

constexpr const char* warning = "\nThe heuristic has found a better formula than the table entry.\n";

const double units = log_units(1000);

LogFormula formula(std::initializer_list<LogTerm> terms) {
    LogFormula made;
    for (const LogTerm& term : terms) made.slots[made.count++] = term;
    return made;
}

LogTermList list(std::initializer_list<LogTermList::Entry> entries) {
    LogTermList made;
    for (const auto& [key, value] : entries) EXPECT_TRUE(made.add(key, value));
    return made;
}

void expect_formula(const LogFormula& found, double cost, std::uint64_t n, double X) {
    EXPECT_LT(cost, no_formula_cost);
    EXPECT_TRUE(verify_log_formula(found, n));
    EXPECT_EQ(cost, log_formula_cost(found.terms(), X));
    for (std::size_t i = 0; i < found.count; i++) {
        EXPECT_NE(found.slots[i].c, 0);
        EXPECT_TRUE(i == 0 || found.slots[i].x > found.slots[i - 1].x);
    }
}

// Both formulas of n; prints nothing.
void expect_both(std::uint64_t n, double X) {
    SCOPED_TRACE(n);
    printed_by([&] {
        LogFormula primary;
        LogFormula secondary;
        expect_formula(primary, search_log_formula(primary, n, X, nullptr), n, X);
        expect_formula(secondary, search_log_formula(secondary, n, X, &primary), n, X);
        for (const LogTerm& term : secondary.terms()) EXPECT_FALSE(primary.has_term(term)) << term.x;
    });
}

TEST(LogSearch, FindsBothFormulasOfSmallNumbers) {
    for (std::uint64_t n = 2; n <= 300; n++) expect_both(n, units);
}

TEST(LogSearch, FindsBothFormulasNearPowersOfTwo) {
    for (int k = 9; k <= (kelvara_test::sanitized ? 20 : 28); k++) {
        const std::uint64_t power = std::uint64_t{1} << k;
        for (const std::uint64_t n : {power - 1, power, power + 1}) {
            if (n <= INT32_MAX) expect_both(n, units);
        }
    }
}

TEST(LogSearch, FindsBothFormulasOfHardNumbers) {
    std::vector<std::uint64_t> numbers = {
        2147483647,      // 2^31 - 1, the largest
        46337u * 46339,  // two large primes
        46339u * 46339,  // the square of one
        1290u * 1290 * 1290,
    };
    if (!kelvara_test::sanitized) {
        numbers.insert(numbers.end(), {2147483646,  // nothing large
                                       2147483629,  // the prime before the largest
                                       2u * 1073741789, 65537u * 32749, 1000000007});
    }
    for (const std::uint64_t n : numbers) expect_both(n, units);
}

TEST(LogSearch, FindsBothFormulasOfRandomNumbers) {
    kelvara_test::Random random(0);
    for (int i = 0; i < (kelvara_test::sanitized ? 5 : 32); i++) {
        expect_both(random.between(2, std::uint64_t{1} << (13 + i % 16)), units);
    }
}

// Whatever the precision, down to less than the logarithm of an argument.
TEST(LogSearch, FindsBothFormulasForEveryPrecision) {
    for (const double X : {0.0, 1.0, 44.0, 1e3, 1e6, 1e9, 1e12, 1e16}) {
        for (const std::uint64_t n : {2u, 3u, 11u, 1009u, 65537u}) expect_both(n, X);
    }
}

TEST(LogSearch, One) {
    LogFormula found = formula({{2, 1}});
    EXPECT_EQ(search_log_formula(found, 1, units, nullptr), 0);
    EXPECT_EQ(found.count, 0u);
}

TEST(LogSearch, TwoIsThatOfTheTables) {
    LogFormula primary;
    EXPECT_EQ(printed_by([&] { search_log_formula(primary, 2, units, nullptr); }), "");
    EXPECT_EQ(primary, formula({{26, 18}, {4801, -2}, {8749, 8}}));
    LogFormula secondary;
    EXPECT_EQ(printed_by([&] { search_log_formula(secondary, 2, units, &primary); }), "");
    EXPECT_EQ(secondary, formula({{251, 144}, {449, 54}, {4801, -38}, {8749, 62}}));
}

TEST(LogSearch, PowersOfTwoAreMultiples) {
    LogFormula found;
    search_log_formula(found, std::uint64_t{1} << 31, units, nullptr);
    EXPECT_EQ(found, formula({{26, 18 * 31}, {4801, -2 * 31}, {8749, 8 * 31}}));
}

TEST(LogSearch, SaysWhenATableIsBeaten) {
    // Right, and dear: arguments as small as 2 take long series.
    const LogRecord dear[] = {{3, 1, {2}, {2}, 1.442695}};
    LogTables tables = primary_log_tables();
    tables.formulas = dear;
    LogFormula found;
    EXPECT_EQ(printed_by([&] { search_log_formula(found, 3, {units, tables, nullptr}); }), warning);
    EXPECT_FALSE(found.has_argument(2));
    EXPECT_TRUE(verify_log_formula(found, 3));
    // Without an entry there is nothing to beat.
    tables.formulas = {};
    EXPECT_EQ(printed_by([&] { search_log_formula(found, 3, {units, tables, nullptr}); }), "");
}

// What is beyond the arguments that a series takes: primes from 2^32 on.
TEST(LogSearch, FailsWithoutNeighboursInReach) {
    for (const std::uint64_t n : {4294967311u, 18446744073709551557u, 18446744073709551615u / 5}) {
        LogFormula found = formula({{2, 1}});
        EXPECT_GE(search_log_formula(found, n, units, nullptr), no_formula_cost) << n;
        EXPECT_EQ(found.count, 0u);
    }
    // Smooth numbers need none.
    LogFormula found;
    const std::uint64_t smooth = std::uint64_t{1} << 63;
    expect_formula(found, search_log_formula(found, smooth, units, nullptr), smooth, units);
}

TEST(LogSearch, EveryBaseFindsItsOwn) {
    const LogTables& tables = primary_log_tables();
    for (std::uint64_t base = smallest_log_basis; base <= largest_log_basis; base++) {
        for (const std::uint64_t n : {2u, 3u, 4u, 11u, 19u, 23u, 251u, 257u, 1024u * 251}) {
            SCOPED_TRACE(n);
            const LogCandidate found = heuristic_search(n, base, {units, tables, nullptr});
            ASSERT_TRUE(found.found());
            LogFormula terms;
            for (const auto& [x, c] : found.terms.entries()) terms.slots[terms.count++] = {x, c};
            EXPECT_TRUE(verify_log_formula(terms, n));
        }
    }
}

TEST(LogSearch, ExcludedArgumentsAreNotUsed) {
    const LogTables& tables = primary_log_tables();
    LogFormula found;
    search_log_formula(found, 1009, {units, tables, nullptr});
    ASSERT_TRUE(found.has_argument(2017));  // 1008 + 1
    LogFormula other;
    search_log_formula(other, 1009, {units, tables, &found});
    EXPECT_FALSE(other.has_argument(2017));
}

TEST(LogFinish, UsesTheTableForOnePrime) {
    const LogSearchSetting setting = {units, primary_log_tables(), nullptr};
    const LogCandidate found = finish_log_formula({}, list({{2, 6}}), 4, setting);
    const LogTermList expected = list({{26, 54}, {4801, -6}, {8749, 24}});
    ASSERT_EQ(found.terms.entries().size(), 3u);
    for (std::size_t i = 0; i < 3; i++) {
        EXPECT_EQ(found.terms.entries()[i].key, expected.entries()[i].key);
        EXPECT_EQ(found.terms.entries()[i].value, expected.entries()[i].value);
    }
    // Half a logarithm, or a prime without an entry, takes the basis.
    EXPECT_EQ(finish_log_formula({}, list({{2, 3}}), 4, setting).terms.entries()[0].key, 251u);
    EXPECT_EQ(finish_log_formula({}, list({{3, 2}}), 4, setting).terms.entries()[0].key, 251u);
}

// The basis is that of the largest prime, whatever the base.
TEST(LogFinish, TakesTheSmallestBasis) {
    const LogSearchSetting setting = {units, primary_log_tables(), nullptr};
    const std::uint64_t first_arguments[] = {251, 251, 251, 251, 351, 1574, 8749, 57799};
    for (std::size_t i = 1; i < 8; i++) {
        const LogCandidate found =
            finish_log_formula({}, list({{2, 2}, {log_primes[i], 2}}), largest_log_basis, setting);
        EXPECT_EQ(found.terms.entries()[0].key, first_arguments[i]);
    }
}

TEST(LogFinish, AddsNothingForAnEmptyQueue) {
    const LogCandidate found =
        finish_log_formula(list({{3, 2}}), {}, 4, {units, primary_log_tables(), nullptr});
    EXPECT_EQ(found.cost, arccoth_cost(3, units));
    EXPECT_EQ(found.terms.entries().size(), 1u);
}

TEST(LogFinish, FailsOnATermOfTheExcludedFormula) {
    // 3^2 by the secondary basis of four: 99, 244, 4801, 8749.
    const LogTermList queue = list({{3, 2}, {5, 2}});
    const LogFormula argument_only = formula({{99, 1}});
    const LogFormula whole_term = formula({{99, 2 * (43 + 63)}});
    const LogTables& tables = secondary_log_tables();
    EXPECT_TRUE(finish_log_formula({}, queue, 4, {units, tables, &argument_only}).found());
    EXPECT_FALSE(finish_log_formula({}, queue, 4, {units, tables, &whole_term}).found());
    EXPECT_TRUE(finish_log_formula({}, queue, 4, {units, tables, nullptr}).found());
}

TEST(LogFinish, FailsWithoutRoom) {
    LogTermList terms;
    for (std::uint64_t x = 0; x < 13; x++) EXPECT_TRUE(terms.add(1000003 + x, 1));
    const LogSearchSetting setting = {units, primary_log_tables(), nullptr};
    EXPECT_TRUE(finish_log_formula(terms, list({{2, 2}}), 4, setting).found());           // 3 more
    EXPECT_FALSE(finish_log_formula(terms, list({{2, 2}, {3, 2}}), 4, setting).found());  // 4 more
    EXPECT_TRUE(terms.add(1, 1));
    EXPECT_FALSE(finish_log_formula(terms, list({{2, 2}}), 4, setting).found());
}

TEST(LogTermLists, AddAndRefuse) {
    LogTermList terms;
    for (std::uint64_t key = 16; key > 0; key--) EXPECT_TRUE(terms.add(2 * key, 5));
    EXPECT_FALSE(terms.add(3, 1));
    EXPECT_TRUE(terms.add(4, -5));  // stays, at 0
    EXPECT_FALSE(terms.add(3, 1));
    ASSERT_EQ(terms.entries().size(), LogTermList::capacity);
    for (std::size_t i = 0; i < 16; i++) {
        EXPECT_EQ(terms.entries()[i].key, 2 * (i + 1));
        EXPECT_EQ(terms.entries()[i].value, i == 1 ? 0 : 5);
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(LogSearchFatalTest, ZeroHasNoLogarithm) {
    LogFormula found;
    EXPECT_FATAL(search_log_formula(found, 0, units, nullptr), "Error: Log\\(0\\)");
}

TEST(LogSearchFatalTest, APrimeBeyondTheBase) {
    const LogSearchSetting setting = {units, primary_log_tables(), nullptr};
    EXPECT_FATAL(finish_log_formula({}, list({{2, 2}, {11, 2}}), 4, setting),
                 "Non-base prime found in queue\\.");
}
#endif

}  // namespace
}  // namespace kelvara
