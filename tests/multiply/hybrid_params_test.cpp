// The sizes of the hybrid transform.
#include "multiply/hybrid_ntt/hybrid_params.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <span>

#include "errors/exception.h"
#include "multiply/algorithm_table.h"
#include "multiply/fft/fft_algorithm.h"
#include "multiply/hybrid_ntt/hybrid_algorithm.h"
#include "multiply/hybrid_ntt/hybrid_transform_parameters.h"
#include "multiply/hybrid_ntt/size_tables.h"
#include "support/fatal.h"

namespace {

using qmp::hybrid_ntt::hybrid_params;
using qmp::hybrid_ntt::HybridParams;
using qmp::hybrid_ntt::HybridRow;
using qmp::hybrid_ntt::HybridTransformParameters;
using qmp::hybrid_ntt::make_params;
using qmp::hybrid_ntt::specialised_rows;
using qmp::hybrid_ntt::standard_params;
using qmp::hybrid_ntt::standard_rows;

constexpr std::uint64_t largest_specialised = 0xA7FC00000;
constexpr std::uint64_t largest_standard = 0x9FFF8000000;

TEST(HybridParams, CapacityFormula) {
    EXPECT_EQ(make_params(4, 32), (HybridParams{4, 32, 4, 5, 1, 512}));
    EXPECT_EQ(make_params(8, 2), (HybridParams{8, 2, 4, 5, 1, 8192}));
    EXPECT_EQ(make_params(9, 1).capacity_bits, 16384u);
    EXPECT_EQ(make_params(17, 21), (HybridParams{17, 21, 21504, 21505, 10751, largest_specialised}));
    EXPECT_EQ(make_params(22, 5), (HybridParams{22, 5, 163840, 163841, 81919, largest_standard}));
}

void expect_list(std::span<const HybridRow> rows, std::uint32_t least_k, std::uint32_t most_k) {
    std::uint64_t before = 0;
    for (const HybridRow& row : rows) {
        const HybridParams size = make_params(row.k, row.m);
        EXPECT_GT(size.capacity_bits, before);
        before = size.capacity_bits;
        EXPECT_TRUE(row.k >= least_k && row.k <= most_k && row.m >= 1);
        EXPECT_EQ(size.capacity_bits % 64, 0u);
        // m 2^k = 128 n exactly, n a multiple of 4: the root of order 2^k is sqrt(2)^m, and residues are
        // pairs of words.
        EXPECT_EQ(std::uint64_t{row.m} << row.k, 128 * size.n);
        EXPECT_EQ(size.n % 4, 0u);
        // 2^k products of two points are below 2^(32 n), by themselves and with the carry word at rest; and
        // a coefficient reaches into no more than the two points above its own.
        EXPECT_LE(2 * 32 * size.point_words + row.k, 32 * size.n);
        EXPECT_LE(row.k, 32 * size.point_words);
        // Products of residues are within reach of the floating-point convolutions.
        EXPECT_LE(64 * size.n, qmp::fft::algorithm64().max_bits);
        const HybridTransformParameters parameters(size, 1);
        EXPECT_EQ(parameters.convolution_bits, size.capacity_bits);
        EXPECT_EQ(parameters.operand_words % 8, 0u);
    }
}

TEST(HybridParams, SpecialisedList) {
    static_assert(qmp::hybrid_ntt::specialised_row_count == 328);
    expect_list(specialised_rows, 4, 19);
    EXPECT_EQ(specialised_rows.front(), (HybridRow{4, 32}));
    EXPECT_EQ(specialised_rows.back(), (HybridRow{17, 21}));
}

TEST(HybridParams, StandardList) {
    static_assert(qmp::hybrid_ntt::standard_row_count == 189);
    expect_list(standard_rows, 8, 22);
    const HybridRow first[] = {{8, 2}, {9, 1}, {8, 4}, {8, 6}, {9, 2}, {8, 8}};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(standard_rows[i], first[i]);
    EXPECT_EQ(standard_rows.back(), (HybridRow{22, 5}));
}

TEST(HybridParams, TheSpecialisedListIsSearchedFirst) {
    EXPECT_EQ(hybrid_params(0), make_params(4, 32));
    EXPECT_EQ(hybrid_params(512), make_params(4, 32));
    EXPECT_EQ(hybrid_params(513), make_params(specialised_rows[1].k, specialised_rows[1].m));
    EXPECT_EQ(hybrid_params(largest_specialised), make_params(17, 21));
    for (const HybridRow& row : specialised_rows) {
        EXPECT_EQ(hybrid_params(make_params(row.k, row.m).capacity_bits), make_params(row.k, row.m));
    }
    EXPECT_GT(hybrid_params(largest_specialised + 1).capacity_bits, largest_specialised);
    EXPECT_EQ(hybrid_params(largest_specialised + 1), standard_params(largest_specialised + 1));
    EXPECT_EQ(hybrid_params(largest_standard), make_params(22, 5));
}

TEST(HybridParams, TheStandardSearchHasTwoRulesOfItsOwn) {
    // It ends on row 1 at the least; up to 8192 bits row 0 is taken instead.
    EXPECT_EQ(standard_params(1), make_params(8, 2));
    EXPECT_EQ(standard_params(8192), make_params(8, 2));
    EXPECT_EQ(standard_params(8193), make_params(9, 1));
    EXPECT_EQ(standard_params(16385), make_params(8, 4));
    for (const auto search : {standard_params, hybrid_params}) {
        try {
            search(largest_standard + 1);
            FAIL();
        } catch (const qmp::LimitExceededException& e) {
            EXPECT_EQ(e.function(), "hybrid_params()");
            EXPECT_EQ(e.limit(), largest_standard);
            EXPECT_EQ(e.attempted(), largest_standard + 1);
        }
    }
}

TEST(HybridAlgorithm, IsInTheRegistry) {
    const qmp::Algorithm64& hnt = qmp::hybrid_ntt::algorithm64();
    EXPECT_EQ(qmp::find_algorithm("HNT", qmp::WordKind::basic64), &hnt);
    EXPECT_EQ(qmp::find_algorithm("HNT", qmp::WordKind::basic32), &qmp::hybrid_ntt::algorithm32());
    EXPECT_EQ(hnt.max_bits, 8795824586752u);
    EXPECT_STREQ(hnt.key, "HNT");
    EXPECT_STREQ(hnt.name, "Hybrid NTT");
    EXPECT_STREQ(hnt.version, "HNTs");
    EXPECT_STREQ(hnt.description, "original");
}

TEST(HybridAlgorithm, MemoryGrowsWithTheProduct) {
    const qmp::Algorithm64& hnt = qmp::hybrid_ntt::algorithm64();
    std::uint64_t before = hnt.psize(1, 1);
    const auto expect_row = [&](const HybridRow& row) {
        const std::uint64_t n = make_params(row.k, row.m).capacity_bits / 64;
        const HybridTransformParameters parameters(n);
        for (std::uint64_t words : {n - 1, n}) {
            EXPECT_GE(hnt.psize(words, 1), before);
            before = hnt.psize(words, 1);
            EXPECT_EQ(hnt.psize(words, 64), before);
        }
        EXPECT_GE(before, 8 * (2 * parameters.operand_words + parameters.scratch_words));
        EXPECT_EQ(qmp::hybrid_ntt::algorithm32().psize(2 * n, 1), before);
    };
    for (const HybridRow& row : specialised_rows) expect_row(row);
    for (const HybridRow& row : standard_rows) {
        if (make_params(row.k, row.m).capacity_bits > largest_specialised) expect_row(row);
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(HybridParamsDeath, NoRootOfUnity) {
    EXPECT_CRASH(HybridTransformParameters(make_params(4, 33), 1), "Invalid Function Parameters:");
    EXPECT_CRASH(HybridTransformParameters(make_params(8, 3), 1), "Invalid Function Parameters:");
    EXPECT_CRASH(HybridTransformParameters(make_params(8, 0), 1), "Invalid Function Parameters:");
}
#endif

}  // namespace
