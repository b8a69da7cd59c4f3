// The algorithm "N32": products by several routes, on every level.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>
#include <vector>

#include "errors/convolution_exceptions.h"
#include "errors/exception.h"
#include "multiply/instruction_levels.h"
#include "multiply/ntt32/ntt32_algorithm.h"
#include "multiply/ntt32/ntt32_params.h"
#include "multiply/ntt32/ntt32_transform_parameters.h"
#include "multiply/ntt32/size_tables.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/algorithm_products.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::Pattern;
using kelvara_test::product_by;
using kelvara_test::Random;
using kelvara_test::TwiddledContext;
using qmp::InstructionLevel;
using qmp::ParallelContext;
using qmp::SizeParams;
using qmp::Word;
using qmp::ntt32::limit_tables;
using qmp::ntt32::Ntt32TransformParameters;
using Words = std::vector<Word>;

const qmp::Algorithm64& n32() {
    return qmp::ntt32::algorithm64();
}

class Ntt32Levels : public testing::TestWithParam<InstructionLevel> {
  protected:
    void SetUp() override {
        if (!qmp::supported(GetParam())) GTEST_SKIP() << qmp::name_of(GetParam()) << " is not supported here";
        qmp::force_level(qmp::name_of(GetParam()));
    }
    void TearDown() override { qmp::force_level(""); }
};
std::string level_name(const testing::TestParamInfo<InstructionLevel>& info) {
    std::string name = qmp::name_of(info.param);
    std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
    return name;
}
// FMA4 and SSE2 have no kernels of their own: the scalar ones serve.
INSTANTIATE_TEST_SUITE_P(Levels, Ntt32Levels,
                         testing::Values(InstructionLevel::avx512, InstructionLevel::avx2,
                                         InstructionLevel::sse2, InstructionLevel::scalar),
                         level_name);

TEST_P(Ntt32Levels, OnesAtTheLargestSizeOfEveryRow) {
    constexpr std::uint64_t longest = 12000;
    TwiddledContext own(longest, n32().psize(longest, 1));
    for (const qmp::LimitRow& row : qmp::ntt32::specialised_rows) {
        const std::uint64_t n = limit_tables.size(row).capacity_bits / 64;
        if (n <= longest) kelvara_test::expect_products_of_ones(n32(), own.context(), n);
    }
    EXPECT_TRUE(own.guards_intact());
}

// All numbers of primes and all multipliers, listed or not, with all-ones operands that fill the convolution:
// the largest coefficients.
TEST_P(Ntt32Levels, EveryNumberOfPrimesAndMultiplier) {
    Random random(30);
    for (std::uint32_t primes = 4; primes <= 9; ++primes) {
        for (std::uint32_t multiplier : {1, 3, 5, 7}) {
            for (std::uint32_t exponent : {9, 10, 11}) {
                const SizeParams size = limit_tables.size(primes, multiplier, exponent);
                const Ntt32TransformParameters parameters(size, 1);
                const std::uint64_t n = parameters.convolution_words();
                TwiddledContext own(1, 8 * parameters.scratch_words);
                if (exponent == 9) kelvara_test::expect_cyclic_products(parameters, own.context(), random);
                // (2^(64 n) - 2)^2 = 1 modulo 2^(64 n) - 1.
                Words a(n, kelvara_test::all_ones);
                a[0] -= 1;
                Words one(n, 0);
                one[0] = 1;
                GuardedWords transformed(parameters.operand_words), square(n);
                parameters.forward_for_square(own.context(), transformed.data(), a.data(), n);
                parameters.inverse_square(own.context(), transformed.data(), square.data(), 0, n);
                ASSERT_EQ(square.value(), one) << primes << ' ' << multiplier << ' ' << exponent;
                EXPECT_TRUE(own.guards_intact() && transformed.guards_intact() && square.guards_intact());
            }
        }
    }
}

// Rows that leave the nearest caches, by one to four depths.
TEST_P(Ntt32Levels, LongRows) {
    for (std::uint32_t exponent : {15, 16, 17, 18, 19}) {
        const SizeParams size = limit_tables.size(4, 1, exponent);
        const Ntt32TransformParameters parameters(size, 1);
        const std::uint64_t n = parameters.convolution_words();
        TwiddledContext own(1, 8 * parameters.scratch_words);
        const Words a(n / 2, kelvara_test::all_ones);
        GuardedWords transformed(parameters.operand_words), square(n);
        parameters.forward_for_square(own.context(), transformed.data(), a.data(), n / 2);
        parameters.inverse_square(own.context(), transformed.data(), square.data(), 0, n);
        ASSERT_EQ(square.value(), kelvara_test::product_of_ones(n / 2, n / 2)) << exponent;
    }
}

TEST_P(Ntt32Levels, EveryPattern) {
    constexpr std::uint64_t longest = 9000;
    TwiddledContext own(longest,
                        std::max(n32().psize(longest, 1), qmp::fft::algorithm64().psize(longest, 1)));
    Random random(31);
    for (std::uint64_t n : {2, 3, 64, 2047, 2048, 2049, 2999, 5000, 9000}) {
        kelvara_test::expect_products(n32(), own.context(), random, n);
    }
    EXPECT_TRUE(own.guards_intact());
}

TEST_P(Ntt32Levels, UpperProductsAndNarrowWords) {
    TwiddledContext own(4000, n32().psize(4000, 1));
    Random random(32);
    kelvara_test::expect_upper_products(n32(), own.context(), random, 3000);
    kelvara_test::expect_narrow_products(qmp::ntt32::algorithm32(), own.context(), random,
                                         {1, 2, 63, 1001, 2500});
    EXPECT_TRUE(own.guards_intact());
}

TEST(Ntt32Product, EveryTaskCountGivesTheSameWords) {
    qmp::PushPoolParallelizer pool;
    Random random(33);
    for (std::uint64_t n : {3000, 40000, 250000}) {
        TwiddledContext own(n, std::max(n32().psize(n, 64), qmp::fft::algorithm64().psize(n, 1)));
        const Words a = make_words(random, n / 2, Pattern::runs), b = make_words(random, n - n / 2);
        const Words expected = product_by(qmp::fft::algorithm64(), own.context(), a, b);
        for (std::uint64_t tasks : {1, 2, 8, 61}) {
            ASSERT_EQ(product_by(n32(), own.context({tasks, &pool}), a, b), expected) << n << ", " << tasks;
        }
    }
}

TEST(Ntt32Product, LargeProducts) {
    Random random(34);
    const std::uint64_t n = 700000;
    TwiddledContext own(n, n32().psize(n, 1));
    const Words a(n / 2, kelvara_test::all_ones), b(n - n / 2 - 1000, kelvara_test::all_ones);
    ASSERT_EQ(product_by(n32(), own.context(), a, b), kelvara_test::product_of_ones(a.size(), b.size()));
}

TEST(Ntt32Product, Limits) {
    kelvara_test::expect_scratch_is_checked(n32(), "Ntt32Algorithm::multiply()", 3000);
    kelvara_test::expect_twiddles_are_checked(n32(), "Ntt32TransformParameters::require_twiddles()", 3000);
    qmp::TransformParametersBox box;
    EXPECT_THROW(n32().construct(box, 37748737), qmp::LimitExceededException);
    EXPECT_EQ(n32().construct(box, 1000, 1048).convolution_bits, 131072u);
    try {
        TwiddledContext own(2048, 800);
        const qmp::TransformParameters& parameters = n32().construct(box, 2048);
        GuardedWords a(parameters.operand_words);
        parameters.inverse_square(own.context(), a.data(), a.data(), 0, 1);
        FAIL();
    } catch (const qmp::BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), "Ntt32TransformParameters::inverse_multiply()");
        EXPECT_EQ(e.buffer_size(), 100u);
        EXPECT_EQ(e.required_size(), box->scratch_words);
    }
}

TEST(Ntt32Product, Compatibility) {
    const Ntt32TransformParameters same(2048), too(2040), longer(2049);
    EXPECT_TRUE(same.compatible_with(too));
    EXPECT_FALSE(same.compatible_with(longer));
    qmp::TransformParametersBox box;
    EXPECT_FALSE(same.compatible_with(qmp::fft::algorithm64().construct(box, 2048)));
}

// A residue that the transform did not make: the coefficients it leads to are as good as random.
TEST(Ntt32Product, DamagedTransformsAreFound) {
    const Ntt32TransformParameters parameters(3000);
    TwiddledContext own(3000, 8 * parameters.scratch_words);
    GuardedWords transformed(parameters.operand_words), square(3000);
    const Words a(1500, kelvara_test::all_ones);
    parameters.forward_for_square(own.context(), transformed.data(), a.data(), a.size());
    transformed.data()[100] ^= 0x100;
    try {
        parameters.inverse_square(own.context(), transformed.data(), square.data(), 0, 3000);
        FAIL();
    } catch (const qmp::ConvolutionFailedException& e) {
        EXPECT_EQ(e.function(), "Ntt32TransformParameters::inverse_multiply()");
        EXPECT_EQ(e.message(), "Coefficient is too large.");
        const std::uint32_t g[] = {0, 2, 3, 3};
        EXPECT_EQ(e.limit(),
                  std::uint64_t{1} << (g[parameters.size().multiplier / 2] + parameters.size().exponent));
        EXPECT_GE(e.found(), e.limit());
    }
}

}  // namespace
