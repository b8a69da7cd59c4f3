// The tables that formulas of logarithms are put together from: every row is exact, and stands where it
// should.
#include "constants/log_tables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "constants/log_formula.h"
#include "constants/log_verification.h"

namespace kelvara {
namespace {

const LogTables* const both_tables[] = {&primary_log_tables(), &secondary_log_tables()};

// The exponents of the primes up to 251 in a number that has no others.
std::map<std::uint64_t, std::int64_t> exponents(std::uint64_t n) {
    std::map<std::uint64_t, std::int64_t> found;
    for (const std::uint64_t prime : log_primes) {
        for (; n % prime == 0; n /= prime) found[prime]++;
    }
    EXPECT_EQ(n, 1u);
    return found;
}

// Adds the exponents of ((x + 1) / (x - 1))^c.
void add_ratio(std::map<std::uint64_t, std::int64_t>& sum, std::uint64_t x, std::int64_t c) {
    for (const auto& [prime, e] : exponents(x + 1)) sum[prime] += c * e;
    for (const auto& [prime, e] : exponents(x - 1)) sum[prime] -= c * e;
}

// That the product is p^power.
void expect_power(std::map<std::uint64_t, std::int64_t> product, std::uint64_t p, std::int64_t power) {
    product[p] -= power;
    for (const auto& [prime, e] : product) EXPECT_EQ(e, 0) << prime;
}

TEST(LogTables, FormulasAreExact) {
    for (const LogTables* tables : both_tables) {
        std::uint64_t before = 1;
        for (const LogRecord& record : tables->formulas) {
            SCOPED_TRACE(record.key);
            EXPECT_GT(record.key, before);
            before = record.key;
            ASSERT_LE(record.count, LogRecord::slots);
            LogFormula formula;
            double measure = 0;
            for (std::size_t i = 0; i < record.count; i++) {
                formula.slots[formula.count++] = {record.x[i], record.c[i]};
                measure += 1 / std::log(static_cast<double>(record.x[i]));
                EXPECT_TRUE(i == 0 || record.x[i] > record.x[i - 1]);
                EXPECT_NE(record.c[i], 0);
            }
            EXPECT_TRUE(verify_log_formula(formula, record.key));
            EXPECT_NEAR(record.measure, measure, 1e-6);
            EXPECT_EQ(tables->formula_of(record.key), &record);
        }
        for (const std::uint64_t absent : {0u, 1u, 13u, 19u, 128u})
            EXPECT_EQ(tables->formula_of(absent), nullptr);
    }
    EXPECT_EQ(primary_log_tables().formulas.size(), 11u);
    EXPECT_EQ(secondary_log_tables().formulas.size(), 13u);
}

TEST(LogTables, BasesAreExact) {
    for (const LogTables* tables : both_tables) {
        ASSERT_EQ(tables->bases.size(), 5u);
        for (std::uint64_t size = smallest_log_basis; size <= largest_log_basis; size++) {
            const LogBasis& basis = tables->basis(size);
            ASSERT_EQ(basis.size, size);
            for (std::size_t p = 0; p < size; p++) {
                SCOPED_TRACE(log_primes[p]);
                std::map<std::uint64_t, std::int64_t> product;
                for (std::size_t j = 0; j < size; j++) add_ratio(product, basis.x[j], basis.rows[p][j]);
                expect_power(product, log_primes[p], 1);
            }
        }
    }
}

TEST(LogTables, RelationsAreExact) {
    for (const LogTables* tables : both_tables) {
        for (const LogRecord& relation : tables->relations.subspan(1)) {
            SCOPED_TRACE(relation.key);
            std::map<std::uint64_t, std::int64_t> product;
            ASSERT_LE(relation.count, 8u);
            ASSERT_GE(relation.count, 1u);
            EXPECT_GE(relation.x[0], 2u);
            EXPECT_LT(relation.x[0], log_argument_limit);
            add_ratio(product, relation.x[0], relation.c[0]);
            for (std::size_t j = 1; j <= relation.count; j++) {
                product[relation.x[j]] += relation.c[j];
                EXPECT_TRUE(j == 1 || relation.x[j] > relation.x[j - 1]);
                EXPECT_NE(relation.c[j], 0);
            }
            EXPECT_LT(relation.largest_prime(), relation.key);
            expect_power(product, relation.key, 2);
            EXPECT_NEAR(relation.measure, 1 / std::log(static_cast<double>(relation.x[0])), 1e-6);
        }
    }
}

TEST(LogTables, RelationsAreInOrder) {
    for (const LogTables* tables : both_tables) {
        const LogRecord& empty = tables->relations.front();
        EXPECT_EQ(empty.key + empty.count + empty.x[0], 0u);
        std::size_t rows = 1;
        for (std::size_t i = 0; i < log_prime_count; i++) {
            const auto relations = tables->relations_of(log_primes[i]);
            if (log_primes[i] < 11) {
                EXPECT_TRUE(relations.empty());
                continue;
            }
            SCOPED_TRACE(log_primes[i]);
            ASSERT_FALSE(relations.empty());
            EXPECT_LE(relations.size(), 5u);
            // Those that need fewer and smaller primes first; each later one is cheaper.
            for (std::size_t j = 1; j < relations.size(); j++) {
                EXPECT_GT(relations[j].largest_prime(), relations[j - 1].largest_prime());
                EXPECT_GT(relations[j].x[0], relations[j - 1].x[0]);
            }
            rows += relations.size();
        }
        EXPECT_EQ(rows, tables->relations.size());
        EXPECT_TRUE(tables->relations_of(257).empty());
    }
}

// The two formulas of a number may not share a term.
TEST(LogTables, RelationsDiffer) {
    for (const LogRecord& relation : primary_log_tables().relations.subspan(1)) {
        for (const LogRecord& other : secondary_log_tables().relations_of(relation.key)) {
            EXPECT_NE(other.x[0], relation.x[0]) << relation.key;
        }
    }
}

std::string row(const LogRecord& relation) {
    std::string text = std::to_string(relation.x[0]) + " " + std::to_string(relation.c[0]) + ":";
    for (std::size_t j = 1; j <= relation.count; j++) {
        text += " " + std::to_string(relation.x[j]) + "^" + std::to_string(relation.c[j]);
    }
    return text;
}

TEST(LogTables, KnownRelations) {
    const LogTables& primary = primary_log_tables();
    ASSERT_EQ(primary.relations_of(11).size(), 1u);
    EXPECT_EQ(row(primary.relations_of(11)[0]), "19601 1: 2^3 3^-4 5^2 7^2");
    ASSERT_EQ(primary.relations_of(13).size(), 2u);
    EXPECT_EQ(row(primary.relations_of(13)[0]), "8191 -2: 2^24 3^-4 5^-2 7^-2");
    EXPECT_EQ(row(primary.relations_of(13)[1]), "246401 1: 2^6 3^-6 5^2 7^1 11^1");
    ASSERT_EQ(primary.relations_of(251).size(), 4u);
    EXPECT_EQ(row(primary.relations_of(251)[0]), "501 2: 2^2 5^6");
    EXPECT_EQ(primary.relations_of(251)[1].x[0], 126001u);
    EXPECT_EQ(primary.relations_of(251)[2].x[0], 745471u);
    EXPECT_EQ(primary.relations_of(251)[3].x[0], 5140981u);
    const LogTables& secondary = secondary_log_tables();
    EXPECT_EQ(row(secondary.relations_of(11)[0]), "6049 1: 2^4 3^3 5^-2 7^1");
    EXPECT_EQ(row(secondary.relations_of(13)[0]), "1457 -2: 2^-6 3^12 7^-2");
}

TEST(LogTables, PrimesAreThoseUpTo251) {
    EXPECT_EQ(log_primes[0], 2u);
    EXPECT_EQ(log_primes[7], 19u);
    EXPECT_EQ(log_primes[53], 251u);
}

}  // namespace
}  // namespace kelvara
