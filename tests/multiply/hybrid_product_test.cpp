// The algorithm "HNT": products by several routes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "errors/convolution_exceptions.h"
#include "errors/exception.h"
#include "multiply/hybrid_ntt/hybrid_algorithm.h"
#include "multiply/hybrid_ntt/hybrid_params.h"
#include "multiply/hybrid_ntt/hybrid_transform_parameters.h"
#include "multiply/hybrid_ntt/size_tables.h"
#include "multiply/instruction_levels.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/algorithm_products.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::Pattern;
using kelvara_test::product_by;
using kelvara_test::Random;
using kelvara_test::TwiddledContext;
using qmp::Word;
using qmp::hybrid_ntt::HybridParams;
using qmp::hybrid_ntt::HybridRow;
using qmp::hybrid_ntt::HybridTransformParameters;
using qmp::hybrid_ntt::make_params;
using Words = std::vector<Word>;

const qmp::Algorithm64& hnt() {
    return qmp::hybrid_ntt::algorithm64();
}

TEST(HybridProduct, OnesAtTheLargestSizeOfEveryRow) {
    constexpr std::uint64_t longest = 16000;
    TwiddledContext own(longest, hnt().psize(longest, 1));
    for (const HybridRow& row : qmp::hybrid_ntt::specialised_rows) {
        const std::uint64_t n = make_params(row.k, row.m).capacity_bits / 64;
        if (n <= longest) kelvara_test::expect_products_of_ones(hnt(), own.context(), n);
    }
    EXPECT_TRUE(own.guards_intact());
}

// The standard list's rows, which the search hides behind the other list.
TEST(HybridProduct, CyclicProductsOfTheStandardList) {
    Random random(50);
    for (const HybridRow& row : qmp::hybrid_ntt::standard_rows) {
        const HybridParams size = make_params(row.k, row.m);
        if (size.capacity_bits > 300000) break;
        const HybridTransformParameters parameters(size, 1);
        TwiddledContext own(4096, 8 * parameters.scratch_words);
        kelvara_test::expect_cyclic_products(parameters, own.context(), random);
        EXPECT_TRUE(own.guards_intact());
    }
}

// Few points of great length and many of the least one; odd m.
TEST(HybridProduct, SizesOutsideTheLists) {
    Random random(51);
    for (const HybridParams& size : {make_params(4, 2048), make_params(7, 4), make_params(11, 1),
                                     make_params(10, 3), make_params(9, 21), make_params(14, 1)}) {
        const HybridTransformParameters parameters(size, 1);
        TwiddledContext own(4096, 8 * parameters.scratch_words);
        const std::uint64_t n = parameters.convolution_words();
        const Words a(n / 2, kelvara_test::all_ones);
        GuardedWords transformed(parameters.operand_words), square(n);
        parameters.forward_for_square(own.context(), transformed.data(), a.data(), n / 2);
        parameters.inverse_square(own.context(), transformed.data(), square.data(), 0, n);
        ASSERT_EQ(square.value(), kelvara_test::product_of_ones(n / 2, n / 2)) << size.k << ' ' << size.m;
        if (n < 10000) kelvara_test::expect_cyclic_products(parameters, own.context(), random);
    }
}

TEST(HybridProduct, EveryPattern) {
    constexpr std::uint64_t longest = 9000;
    TwiddledContext own(longest,
                        std::max(hnt().psize(longest, 1), qmp::fft::algorithm64().psize(longest, 1)));
    Random random(52);
    for (std::uint64_t n : {2, 3, 8, 9, 64, 100, 1000, 2049, 9000}) {
        kelvara_test::expect_products(hnt(), own.context(), random, n);
    }
    EXPECT_TRUE(own.guards_intact());
}

TEST(HybridProduct, UpperProductsAndNarrowWords) {
    TwiddledContext own(4000, hnt().psize(4000, 1));
    Random random(53);
    kelvara_test::expect_upper_products(hnt(), own.context(), random, 3000);
    kelvara_test::expect_narrow_products(qmp::hybrid_ntt::algorithm32(), own.context(), random,
                                         {1, 2, 15, 16, 63, 1001});
    EXPECT_TRUE(own.guards_intact());
}

TEST(HybridProduct, EveryTaskCountAndLevelGivesTheSameWords) {
    qmp::PushPoolParallelizer pool;
    Random random(54);
    for (std::uint64_t n : {100, 3000, 40000, 150000}) {
        TwiddledContext own(n, std::max(hnt().psize(n, 64), qmp::fft::algorithm64().psize(n, 1)));
        const Words a = make_words(random, n / 2, Pattern::runs), b = make_words(random, n - n / 2);
        const Words expected = product_by(qmp::fft::algorithm64(), own.context(), a, b);
        for (std::uint64_t tasks : {1, 2, 8, 61, 1000}) {
            ASSERT_EQ(product_by(hnt(), own.context({tasks, &pool}), a, b), expected) << n << ", " << tasks;
        }
        for (std::size_t i = 0; i < qmp::instruction_level_count; ++i) {
            const auto level = static_cast<qmp::InstructionLevel>(i);
            if (!qmp::supported(level)) continue;
            qmp::force_level(qmp::name_of(level));
            EXPECT_EQ(product_by(hnt(), own.context(), a, b), expected) << qmp::name_of(level);
        }
        qmp::force_level("");
        EXPECT_TRUE(own.guards_intact());
    }
}

TEST(HybridProduct, Limits) {
    kelvara_test::expect_scratch_is_checked(hnt(), "HybridAlgorithm::multiply()", 3000);
    kelvara_test::expect_twiddles_are_checked(hnt(), "HybridTransformParameters::require_twiddles()", 3000);
    qmp::TransformParametersBox box;
    // Hex 9FFF8000000 bits and one word more.
    EXPECT_EQ(hnt().construct(box, 0x9FFF8000000 / 64).convolution_bits, 0x9FFF8000000u);
    EXPECT_THROW(hnt().construct(box, 0x9FFF8000000 / 64 + 1), qmp::LimitExceededException);
    EXPECT_EQ(hnt().construct(box, 4, 4).convolution_bits, 512u);
    TwiddledContext own(8, 0);
    GuardedWords a(box->operand_words);
    for (const bool forward : {true, false}) {
        try {
            if (forward) {
                box->forward(own.context(), a.data(), a.data(), 0);
            } else {
                box->inverse_square(own.context(), a.data(), a.data(), 0, 1);
            }
            FAIL();
        } catch (const qmp::BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), forward ? "HybridTransformParameters::forward()"
                                            : "HybridTransformParameters::inverse_multiply()");
            EXPECT_EQ(e.buffer_size(), 0u);
            EXPECT_EQ(e.required_size(), box->scratch_words);
        }
    }
}

TEST(HybridProduct, Compatibility) {
    const HybridTransformParameters same(8), too(7), longer(9);
    EXPECT_TRUE(same.compatible_with(too));
    EXPECT_FALSE(same.compatible_with(longer));
    qmp::TransformParametersBox box;
    EXPECT_FALSE(same.compatible_with(qmp::fft::algorithm64().construct(box, 8)));
}

// A residue that the transform did not make: the coefficients it leads to are as good as random.
TEST(HybridProduct, DamagedTransformsAreFound) {
    const HybridTransformParameters parameters(3000);
    TwiddledContext own(3000, 8 * parameters.scratch_words);
    GuardedWords transformed(parameters.operand_words), square(3000);
    const Words a(1500, kelvara_test::all_ones);
    parameters.forward_for_square(own.context(), transformed.data(), a.data(), a.size());
    transformed.data()[0] ^= 0x100;
    try {
        parameters.inverse_square(own.context(), transformed.data(), square.data(), 0, 3000);
        FAIL();
    } catch (const qmp::ConvolutionFailedException& e) {
        EXPECT_EQ(e.function(), "HybridTransformParameters::inverse_multiply()");
        EXPECT_EQ(e.message(), "Coefficient is too large.");
        EXPECT_EQ(e.limit(), parameters.size().points());
        EXPECT_GE(e.found(), e.limit());
    }
}

}  // namespace
