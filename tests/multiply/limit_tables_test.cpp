// The size lists of the transforms modulo several primes, and the search in them.
#include "multiply/limit_tables.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "errors/exception.h"
#include "multiply/ntt64/ntt64_params.h"
#include "multiply/ntt64/size_tables.h"
#include "multiply/vst/size_tables.h"
#include "multiply/vst/vst_params.h"

namespace {

using qmp::LimitRow;
using qmp::LimitTables;
using qmp::SizeParams;

constexpr std::array<LimitRow, 3> few_rows = {{{2, 1, 3}, {3, 1, 3}, {2, 3, 3}}};  // 40, 80, 120 bits
constexpr std::array<LimitRow, 2> more_rows = {{{3, 1, 1}, {5, 1, 4}}};            // 20, 320 bits

TEST(LimitTables, CapacityFormula) {
    const LimitTables tables{"search()", 10, {}, few_rows};
    EXPECT_EQ(tables.size(few_rows[2]), (SizeParams{2, 3, 3, 120}));
    EXPECT_EQ(tables.size(9, 7, 40).capacity_bits, 8 * 7 * 10 * (std::uint64_t{1} << 39));
    EXPECT_EQ(tables.size(2, 3, 3).points(), 24u);
    EXPECT_EQ(qmp::halved(tables.size(2, 3, 3)), tables.size(2, 3, 2));
}

TEST(LimitTables, TheSpecialisedListIsSearchedFirst) {
    const LimitTables tables{"search()", 10, few_rows, more_rows};
    EXPECT_EQ(tables.find(0), tables.size(2, 1, 3));  // though the standard list has a smaller row
    EXPECT_EQ(tables.find(40), tables.size(2, 1, 3));
    EXPECT_EQ(tables.find(41), tables.size(3, 1, 3));
    EXPECT_EQ(tables.find(81), tables.size(2, 3, 3));
    EXPECT_EQ(tables.find(120), tables.size(2, 3, 3));
    EXPECT_EQ(tables.find(121), tables.size(5, 1, 4));
    EXPECT_EQ(tables.find(320), tables.size(5, 1, 4));
}

TEST(LimitTables, WithoutASpecialisedList) {
    const LimitTables tables{"search()", 10, {}, more_rows};
    EXPECT_EQ(tables.find(20), tables.size(3, 1, 1));
    EXPECT_EQ(tables.find(21), tables.size(5, 1, 4));
}

TEST(LimitTables, BeyondBothLists) {
    const LimitTables tables{"search()", 10, few_rows, more_rows};
    try {
        tables.find(321);
        FAIL();
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.function(), "search()");
        EXPECT_EQ(e.limit(), 320u);
        EXPECT_EQ(e.attempted(), 321u);
    }
}

// The sizes that shorter products may take, and no others.
TEST(LimitTables, VisitsWhatTheSearchFinds) {
    const LimitTables tables{"search()", 10, few_rows, more_rows};
    const auto visited = [&](std::uint64_t bits) {
        std::vector<std::uint64_t> capacities;
        tables.visit_sizes_up_to(bits,
                                 [&](const SizeParams& size) { capacities.push_back(size.capacity_bits); });
        return capacities;
    };
    using Capacities = std::vector<std::uint64_t>;
    EXPECT_EQ(visited(0), (Capacities{40}));
    EXPECT_EQ(visited(80), (Capacities{40, 80}));
    EXPECT_EQ(visited(81), (Capacities{40, 80, 120}));
    EXPECT_EQ(visited(121), (Capacities{40, 80, 120, 320}));  // 20 bits are never found
    EXPECT_THROW(visited(321), qmp::LimitExceededException);
    Capacities rows;
    tables.visit_rows_up_to(tables.standard, 20,
                            [&](const SizeParams& size) { rows.push_back(size.capacity_bits); });
    EXPECT_EQ(rows, (Capacities{20}));
    tables.visit_rows_up_to(tables.standard, 1000,
                            [&](const SizeParams& size) { rows.push_back(size.capacity_bits); });
    EXPECT_EQ(rows, (Capacities{20, 20, 320}));
}

// Rows of a transform: at least `fewest` primes, strictly increasing, each found by its own capacity and by
// one bit more than the row before holds.
template <typename Rows>
void expect_increasing(const LimitTables& tables, const Rows& rows, std::uint32_t fewest) {
    std::uint64_t before = 0;
    for (const LimitRow& row : rows) {
        EXPECT_GE(row.primes, fewest);
        EXPECT_LE(row.primes, 9u);
        EXPECT_TRUE(row.multiplier % 2 == 1 && row.multiplier <= 7);
        const SizeParams params = tables.size(row);
        EXPECT_LT(before, params.capacity_bits);
        EXPECT_EQ(params.capacity_bits % 64, 0u);
        before = params.capacity_bits;
    }
}
template <typename Rows>
void expect_found(const LimitTables& tables, const Rows& rows, std::uint64_t served_before) {
    std::uint64_t before = served_before;
    for (const LimitRow& row : rows) {
        const SizeParams params = tables.size(row);
        if (params.capacity_bits <= served_before) continue;
        EXPECT_EQ(tables.find(params.capacity_bits), params);
        EXPECT_EQ(tables.find(before + 1), params);
        before = params.capacity_bits;
    }
}

void expect_limit(const LimitTables& tables, const char* function, std::uint64_t limit, std::uint64_t bits) {
    try {
        tables.find(bits);
        FAIL() << bits;
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.function(), function);
        EXPECT_EQ(e.limit(), limit);
        EXPECT_EQ(e.attempted(), bits);
    }
}

TEST(VstParams, Lists) {
    using namespace qmp::vst;
    ASSERT_EQ(standard_rows.size(), 312u);
    ASSERT_EQ(specialised_rows.size(), 127u);
    expect_increasing(limit_tables, standard_rows, 6);
    expect_increasing(limit_tables, specialised_rows, 6);
    EXPECT_EQ(limit_tables.size(standard_rows.front()), (SizeParams{6, 1, 10, 122880}));
    EXPECT_EQ(limit_tables.size(standard_rows.back()), (SizeParams{6, 5, 39, 0x12C0000000000}));
    EXPECT_EQ(limit_tables.size(specialised_rows.front()), (SizeParams{7, 1, 10, 147456}));
    EXPECT_EQ(limit_tables.size(specialised_rows.back()), (SizeParams{9, 7, 25, 0xA80000000}));
    expect_found(limit_tables, specialised_rows, 0);
    expect_found(limit_tables, standard_rows, 0xA80000000);
}

TEST(VstParams, Edges) {
    using qmp::vst::vst_params;
    for (std::uint64_t bits : {0, 1, 122880, 147455, 147456}) {
        EXPECT_EQ(vst_params(bits), (SizeParams{7, 1, 10, 147456})) << bits;
    }
    EXPECT_EQ(vst_params(147457), (SizeParams{6, 5, 8, 153600}));
    // 10241 words, the first product that is too long for the floating-point transform: (6,1,12) = 491520
    // is too short, and of the rows that follow (7,1,12) = 589824 as well.
    EXPECT_EQ(vst_params(655424), (SizeParams{6, 3, 11, 737280}));
    EXPECT_EQ(vst_params(0xA80000000), (SizeParams{9, 7, 25, 0xA80000000}));
    const SizeParams first_standard = vst_params(0xA80000001);
    EXPECT_GT(first_standard.capacity_bits, 0xA80000000u);
    EXPECT_EQ(vst_params(0x12C0000000000), (SizeParams{6, 5, 39, 0x12C0000000000}));
    expect_limit(qmp::vst::limit_tables, "vst_params()", 0x12C0000000000, 0x12C0000000001);
    expect_limit(qmp::vst::limit_tables, "vst_params()", 0x12C0000000000, ~std::uint64_t{0});
}

TEST(Ntt64Params, Lists) {
    using namespace qmp::ntt64;
    ASSERT_EQ(standard_rows.size(), 424u);
    ASSERT_EQ(specialised_rows.size(), 138u);
    expect_increasing(limit_tables, standard_rows, 5);
    expect_increasing(limit_tables, specialised_rows, 5);
    EXPECT_EQ(limit_tables.size(standard_rows.front()), (SizeParams{5, 1, 12, 524288}));
    EXPECT_EQ(limit_tables.size(standard_rows.back()), (SizeParams{5, 7, 52, 0x3800000000000000}));
    EXPECT_EQ(limit_tables.size(specialised_rows.front()), (SizeParams{5, 1, 10, 131072}));
    EXPECT_EQ(limit_tables.size(specialised_rows.back()), (SizeParams{9, 5, 25, 0xA00000000}));
    expect_found(limit_tables, specialised_rows, 0);
    expect_found(limit_tables, standard_rows, 0xA00000000);
}

TEST(Ntt64Params, Edges) {
    using qmp::ntt64::ntt64_params;
    for (std::uint64_t bits : {0, 1, 100000, 131072}) {
        EXPECT_EQ(ntt64_params(bits), (SizeParams{5, 1, 10, 131072})) << bits;
    }
    EXPECT_EQ(ntt64_params(131073), (SizeParams{6, 1, 10, 163840}));
    EXPECT_EQ(ntt64_params(0xA00000000), (SizeParams{9, 5, 25, 0xA00000000}));
    const SizeParams first_standard = ntt64_params(0xA00000001);
    EXPECT_EQ(first_standard, (SizeParams{8, 3, 26, 0xA80000000}));
    EXPECT_EQ(ntt64_params(0x3800000000000000), (SizeParams{5, 7, 52, 0x3800000000000000}));
    expect_limit(qmp::ntt64::limit_tables, "ntt64_params()", 0x3800000000000000, 0x3800000000000001);
}

}  // namespace
