// The primes and the sizes of the 32-bit number-theoretic transform.
#include "multiply/ntt32/ntt32_params.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <span>

#include "errors/exception.h"
#include "multiply/algorithm_table.h"
#include "multiply/ntt32/modular.h"
#include "multiply/ntt32/ntt32_algorithm.h"
#include "multiply/ntt32/ntt32_transform_parameters.h"
#include "multiply/ntt32/prime_table.h"
#include "multiply/ntt32/size_tables.h"
#include "support/fatal.h"

namespace {

using qmp::LimitRow;
using qmp::SizeParams;
using qmp::ntt32::limit_tables;
using qmp::ntt32::ntt32_params;
using qmp::ntt32::Ntt32TransformParameters;

constexpr std::uint64_t largest = 0x90000000;

bool is_prime(std::uint32_t n) {
    for (std::uint32_t q = 3; std::uint64_t{q} * q <= n; q += 2) {
        if (n % q == 0) return false;
    }
    return n % 2 == 1;
}

TEST(Ntt32Primes, AreTheLargestOfTheirKind) {
    for (std::size_t set = 0; set < qmp::ntt32::set_count; ++set) {
        const std::uint32_t step = 1u << qmp::ntt32::set_exponents[set];
        std::uint32_t above = 0x80000001;
        for (const qmp::ntt32::Prime& prime : qmp::ntt32::prime_table[set]) {
            for (std::uint32_t p = above - step; p > prime.value; p -= step) EXPECT_FALSE(is_prime(p)) << p;
            EXPECT_EQ(prime.value % step, 1u);
            EXPECT_TRUE(is_prime(prime.value));
            // No square, so its powers have roots of unity of the full order.
            EXPECT_EQ(qmp::ntt32::power_modulo(prime.primitive_root, (prime.value - 1) / 2, prime.value),
                      prime.value - 1);
            above = prime.value;
        }
    }
}

void expect_list(std::span<const LimitRow> rows) {
    EXPECT_EQ(rows.front(), (LimitRow{5, 1, 11}));
    EXPECT_EQ(rows.back(), (LimitRow{4, 3, 24}));
    std::uint64_t before = 0;
    for (const LimitRow& row : rows) {
        const SizeParams size = limit_tables.size(row);
        EXPECT_GT(size.capacity_bits, before);
        before = size.capacity_bits;
        EXPECT_TRUE(row.primes >= 4 && row.primes <= 9);
        EXPECT_TRUE(row.multiplier % 2 == 1 && row.multiplier <= 7);
        EXPECT_TRUE(row.exponent >= 9 && row.exponent <= 24);
        EXPECT_EQ(size.capacity_bits % 64, 0u);
        // Coefficients are below 2^(32 (primes - 1)) times the number of points, and that is to be below the
        // product of the primes, by 2^-20.
        double bits = 0;
        for (std::uint32_t i = 0; i < row.primes; ++i) {
            bits += std::log2(qmp::ntt32::prime_table[qmp::ntt32::prime_set(row.exponent)][i].value);
        }
        EXPECT_GT(bits, 32.0 * (row.primes - 1) + std::log2(static_cast<double>(size.points())) + 0x1p-19);
    }
    EXPECT_EQ(before, largest);
}

TEST(Ntt32Params, EveryRowHoldsItsCoefficients) {
    static_assert(qmp::ntt32::standard_row_count == 126);
    expect_list(qmp::ntt32::standard_rows);
    expect_list(qmp::ntt32::specialised_rows);
}

TEST(Ntt32Params, EveryRowMakesAParameterObject) {
    for (const auto& list : {limit_tables.specialised, limit_tables.standard}) {
        for (const LimitRow& row : list) {
            const SizeParams size = limit_tables.size(row);
            const Ntt32TransformParameters parameters(size, 1);
            EXPECT_EQ(parameters.convolution_bits, size.capacity_bits);
            EXPECT_EQ(parameters.operand_words % 8, 0u);
            EXPECT_GE(8 * parameters.operand_words, 4 * size.primes * size.points());
        }
    }
}

TEST(Ntt32Params, Search) {
    EXPECT_EQ(ntt32_params(0), limit_tables.size(5, 1, 11));
    EXPECT_EQ(ntt32_params(131072), limit_tables.size(5, 1, 11));
    EXPECT_EQ(ntt32_params(131073), limit_tables.size(qmp::ntt32::specialised_rows[1]));
    EXPECT_EQ(ntt32_params(largest), limit_tables.size(4, 3, 24));
    for (const LimitRow& row : qmp::ntt32::specialised_rows) {
        EXPECT_EQ(ntt32_params(limit_tables.size(row).capacity_bits), limit_tables.size(row));
    }
    try {
        ntt32_params(largest + 1);
        FAIL();
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.function(), "ntt32_params()");
        EXPECT_EQ(e.limit(), largest);
        EXPECT_EQ(e.attempted(), largest + 1);
    }
}

TEST(Ntt32Algorithm, IsInTheRegistry) {
    const qmp::Algorithm64& n32 = qmp::ntt32::algorithm64();
    EXPECT_EQ(qmp::find_algorithm("N32", qmp::WordKind::basic64), &n32);
    EXPECT_EQ(qmp::find_algorithm("N32", qmp::WordKind::basic32), &qmp::ntt32::algorithm32());
    EXPECT_EQ(qmp::find_algorithm("N32", qmp::WordKind::swap32), nullptr);
    EXPECT_EQ(qmp::find_algorithm("N32", qmp::WordKind::swap64), nullptr);
    EXPECT_EQ(n32.max_bits, 2415919104u);
    EXPECT_STREQ(n32.key, "N32");
    EXPECT_STREQ(n32.name, "32-bit NTT");
    EXPECT_STREQ(n32.version, "NTT32");
    EXPECT_STREQ(n32.description, "32-bit NTT");
}

TEST(Ntt32Algorithm, MemoryGrowsWithTheProduct) {
    const qmp::Algorithm64& n32 = qmp::ntt32::algorithm64();
    std::uint64_t before = n32.psize(1, 1);
    for (const LimitRow& row : qmp::ntt32::specialised_rows) {
        const std::uint64_t n = limit_tables.size(row).capacity_bits / 64;
        const Ntt32TransformParameters parameters(n);
        for (std::uint64_t words : {n - 1, n}) {
            EXPECT_GE(n32.psize(words, 1), before);
            EXPECT_GE(n32.psize(words, 1), 8 * (2 * parameters.operand_words + parameters.scratch_words));
            before = n32.psize(words, 1);
            EXPECT_EQ(n32.psize(words, 64), before);
        }
        EXPECT_EQ(qmp::ntt32::algorithm32().psize(2 * n, 1), before);
    }
    EXPECT_THROW(n32.psize(largest / 64 + 1, 1), qmp::LimitExceededException);
}

#if GTEST_HAS_DEATH_TEST
TEST(Ntt32ParamsDeath, TooLongForThePrimes) {
    EXPECT_CRASH(Ntt32TransformParameters(limit_tables.size(9, 7, 22), 1), "Invalid Function Parameters:");
    EXPECT_CRASH(Ntt32TransformParameters(limit_tables.size(4, 1, 8), 1), "Invalid Function Parameters:");
}
#endif

}  // namespace
