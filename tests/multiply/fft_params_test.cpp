#include "multiply/fft/fft_params.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "errors/exception.h"
#include "multiply/fft/size_tables.h"

namespace {

using qmp::fft::exact_size_table;
using qmp::fft::fft_params;
using qmp::fft::fft_params_exact;
using qmp::fft::FftParams;
using qmp::fft::make_params;
using qmp::fft::size_table;

TEST(FftParams, FirstRows) {
    EXPECT_EQ(fft_params(0), make_params(1, 7, 16));
    EXPECT_EQ(fft_params(1), make_params(1, 7, 16));
    EXPECT_EQ(fft_params(2048), make_params(1, 7, 16));
    EXPECT_EQ(fft_params(2048).capacity_bits, 2048u);
    EXPECT_EQ(fft_params(2049), make_params(1, 7, 20));
    EXPECT_EQ(fft_params(2049).capacity_bits, 2560u);
}

TEST(FftParams, LastRow) {
    EXPECT_EQ(fft_params(100663296), make_params(1, 23, 12));
    try {
        fft_params(100663297);
        FAIL();
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.function(), "fft_params()");
        EXPECT_EQ(e.limit(), 100663296u);
        EXPECT_EQ(e.attempted(), 100663297u);
    }
    EXPECT_THROW(fft_params(~std::uint64_t{0}), qmp::LimitExceededException);
}

TEST(FftParams, EveryEdgeOfEveryRow) {
    ASSERT_EQ(size_table.size(), 95u);
    for (std::size_t i = 0; i < size_table.size(); ++i) {
        const FftParams& row = size_table[i];
        EXPECT_EQ(row.points, std::uint64_t{row.r} << row.k);
        EXPECT_EQ(row.capacity_bits, row.b * row.points);
        EXPECT_EQ(fft_params(row.capacity_bits), row);
        EXPECT_EQ(fft_params(row.capacity_bits - 1), row);
        if (i + 1 < size_table.size()) {
            EXPECT_EQ(fft_params(row.capacity_bits + 1), size_table[i + 1]);
        }
    }
}

// Irregular on purpose: narrow points where the next row has wider ones.
TEST(FftParams, IrregularRowsAreKept) {
    EXPECT_EQ(fft_params(1572864), make_params(1, 17, 12));
    EXPECT_EQ(fft_params(1572865), make_params(1, 17, 14));
    EXPECT_EQ(fft_params(28835840), make_params(5, 19, 11));
    EXPECT_EQ(fft_params(52428800), make_params(5, 20, 10));
    EXPECT_EQ(fft_params(655360), make_params(5, 13, 16));
    EXPECT_EQ(fft_params(655361), make_params(3, 14, 16));
}

TEST(FftParamsExact, Table) {
    ASSERT_EQ(exact_size_table.size(), 261u);
    EXPECT_EQ(exact_size_table.front(), make_params(1, 7, 9));
    EXPECT_EQ(exact_size_table.front().capacity_bits, 1152u);
    EXPECT_EQ(exact_size_table.back(), make_params(1, 22, 12));
    EXPECT_EQ(exact_size_table.back().capacity_bits, 50331648u);
    std::set<std::uint64_t> bits, exponents, widths;
    for (std::size_t i = 0; i < exact_size_table.size(); ++i) {
        const FftParams& row = exact_size_table[i];
        EXPECT_TRUE(row.r == 1 || row.r == 3 || row.r == 5);
        EXPECT_EQ(row, make_params(row.r, row.k, row.b));
        if (i > 0) {
            EXPECT_LT(exact_size_table[i - 1].capacity_bits, row.capacity_bits);
        }
        EXPECT_EQ(fft_params_exact(row.capacity_bits), row);
        exponents.insert(row.k);
        widths.insert(row.b);
    }
    EXPECT_EQ(*exponents.begin(), 7u);
    EXPECT_EQ(*exponents.rbegin(), 22u);
    EXPECT_EQ(*widths.begin(), 9u);
    EXPECT_EQ(*widths.rbegin(), 20u);
}

TEST(FftParamsExact, OnlyExactSizes) {
    EXPECT_EQ(fft_params_exact(1152), make_params(1, 7, 9));
    EXPECT_EQ(fft_params_exact(1280), make_params(1, 7, 10));
    for (std::uint64_t s : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{1151}, std::uint64_t{1153},
                            std::uint64_t{1279}, std::uint64_t{1281}, std::uint64_t{50331647}}) {
        try {
            fft_params_exact(s);
            FAIL() << s;
        } catch (const qmp::InvalidParametersException& e) {
            EXPECT_EQ(e.function(), "fft_params_exact()");
            EXPECT_EQ(e.message(), "Invalid Parameters");
        }
    }
    try {
        fft_params_exact(50331649);
        FAIL();
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.limit(), 50331648u);
        EXPECT_EQ(e.attempted(), 50331649u);
    }
}

}  // namespace
