// The algorithm: products of every row of the size table, by several routes.
#include <gtest/gtest.h>
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "errors/exception.h"
#include "multiply/basecase/basecase_algorithm.h"
#include "multiply/fft/fft_algorithm.h"
#include "multiply/fft/fft_transform_parameters.h"
#include "multiply/fft/size_tables.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/fatal.h"
#include "support/levels.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::TwiddledContext;
using qmp::MultiplyContext;
using qmp::ParallelContext;
using qmp::Word;
using qmp::fft::FftParams;
using Words = std::vector<Word>;

constexpr Word ones = ~Word{0};
constexpr std::uint64_t dispatch_limit = 10240;
constexpr std::uint64_t largest_product = 1572864;

const qmp::Algorithm64& fft() {
    return qmp::fft::algorithm64();
}

// (2^(64 la) - 1) * (2^(64 lb) - 1) = 2^(64 (la + lb)) - 2^(64 la) - 2^(64 lb) + 1, la >= lb.
void expect_product_of_ones(const Word* product, std::uint64_t la, std::uint64_t lb) {
    ASSERT_EQ(product[0], Word{lb == 0 ? 0u : 1u});
    for (std::uint64_t i = 1; i < la + lb; ++i) {
        const Word expected = i < lb ? 0 : i == la ? ones - 1 : ones;
        ASSERT_EQ(product[i], expected) << "word " << i << " of " << la << " + " << lb;
    }
}

Words product_of(const MultiplyContext& context, const Words& a, const Words& b) {
    GuardedWords product(a.size() + b.size());
    fft().multiply(context, product.data(), a.data(), a.size(), b.data(), b.size());
    EXPECT_TRUE(product.guards_intact());
    return product.value();
}

class FftProduct : public kelvara_test::LevelTest {};
INSTANTIATE_EVERY_LEVEL(FftProduct);

TEST_P(FftProduct, OnesAtTheLargestSizeOfEveryRow) {
    TwiddledContext own(dispatch_limit, fft().psize(dispatch_limit, 1));
    for (const FftParams& row : qmp::fft::size_table) {
        const std::uint64_t n = row.capacity_bits / 64;
        if (n > dispatch_limit) break;
        for (std::uint64_t lb : {n / 2, n / 3, std::uint64_t{1}}) {
            const Words a(n - lb, ones), b(lb, ones);
            expect_product_of_ones(product_of(own.context(), a, b).data(), n - lb, lb);
        }
        // The square of the same words: one transform serves for both.
        GuardedWords square(n);
        const Words a(n / 2, ones);
        fft().multiply(own.context(), square.data(), a.data(), n / 2, a.data(), n / 2);
        expect_product_of_ones(square.data(), n / 2, n / 2);
    }
    EXPECT_TRUE(own.guards_intact());
}

TEST_P(FftProduct, EveryPatternAgainstTheBasecase) {
    TwiddledContext own(1024, std::max(fft().psize(1024, 1), qmp::basecase::algorithm64().psize(1024, 1)));
    Random random(10);
    for (std::uint64_t n :
         {2, 3, 32, 33, 40, 59, 64, 96, 100, 152, 160, 200, 288, 320, 380, 512, 700, 1024}) {
        for (Pattern pattern : kelvara_test::all_patterns) {
            const std::uint64_t lb = random.between(1, n - 1);
            const Words a = make_words(random, n - lb, pattern), b = make_words(random, lb, pattern);
            Words expected(n);
            qmp::basecase::algorithm64().multiply(own.context(), expected.data(), a.data(), n - lb, b.data(),
                                                  lb);
            ASSERT_EQ(product_of(own.context(), a, b), expected) << n << " words";
        }
    }
    EXPECT_TRUE(own.guards_intact());
}

// Without the operands' order, and with only a part of the product's words.
TEST_P(FftProduct, UpperProducts) {
    TwiddledContext own(300, fft().psize(300, 1));
    Random random(11);
    for (int round = 0; round < 30; ++round) {
        const std::uint64_t la = random.between(1, 150), lb = random.between(1, 150);
        const Words a = make_words(random, la, Pattern::runs), b = make_words(random, lb, Pattern::runs);
        const Words whole = kelvara_test::reference_product(a, b);
        const std::uint64_t end = random.between(1, la + lb), skip = random.between(0, end - 1);
        GuardedWords part(end - skip);
        fft().upper_product(own.context(), part.data(), skip, end, a.data(), la, b.data(), lb);
        ASSERT_EQ(part.value(), Words(whole.begin() + skip, whole.begin() + end));
        ASSERT_TRUE(part.guards_intact());
        GuardedWords halved(end - skip);
        fft().upper_product_halved(own.context(), halved.data(), skip, end, a.data(), la, b.data(), lb);
        ASSERT_EQ(halved.value(), part.value());

        const Words square = kelvara_test::reference_product(a, a);
        const std::uint64_t square_end = random.between(1, 2 * la),
                            square_skip = random.between(0, square_end - 1);
        GuardedWords square_part(square_end - square_skip);
        fft().upper_square(own.context(), square_part.data(), square_skip, square_end, a.data(), la);
        ASSERT_EQ(square_part.value(), Words(square.begin() + square_skip, square.begin() + square_end));
        ASSERT_TRUE(square_part.guards_intact());
    }
    EXPECT_TRUE(own.guards_intact());
}

// 32-bit words are the same bytes; odd counts end in the middle of a 64-bit word.
TEST_P(FftProduct, WordsOf32Bits) {
    TwiddledContext own(400, fft().psize(400, 1));
    Random random(12);
    const qmp::Algorithm32& fft32 = qmp::fft::algorithm32();
    for (std::uint64_t la : {1, 2, 63, 64, 101, 300}) {
        for (std::uint64_t lb : {1, 5, 64, 99}) {
            std::vector<std::uint32_t> a(la), b(lb), product(la + lb + 2, 0xfeedbeef);
            for (auto& word : a) word = static_cast<std::uint32_t>(random.next());
            for (auto& word : b)
                word = random.between(0, 1) ? 0xffffffff : static_cast<std::uint32_t>(random.next());
            fft32.multiply(own.context(), product.data(), a.data(), la, b.data(), lb);
            Words wide_a((la + 1) / 2, 0), wide_b((lb + 1) / 2, 0);
            std::memcpy(wide_a.data(), a.data(), 4 * la);
            std::memcpy(wide_b.data(), b.data(), 4 * lb);
            const Words expected = kelvara_test::reference_product(wide_a, wide_b);
            ASSERT_EQ(std::memcmp(product.data(), expected.data(), 4 * (la + lb)), 0) << la << " x " << lb;
            EXPECT_EQ(product[la + lb], 0xfeedbeef);

            std::vector<std::uint32_t> part(la + lb, 0xfeedbeef);
            fft32.upper_product(own.context(), part.data(), 1, la + lb, a.data(), la, b.data(), lb);
            EXPECT_TRUE(std::equal(part.begin(), part.end() - 1, product.begin() + 1));
            EXPECT_EQ(part.back(), 0xfeedbeef);
        }
    }
}

#ifdef KELVARA_HAVE_GMP
TEST_P(FftProduct, AgainstGmp) {
    TwiddledContext own(dispatch_limit, fft().psize(dispatch_limit, 1));
    Random random(13);
    for (std::uint64_t round = 0; round < 40 * kelvara_test::multiplier(); ++round) {
        const std::uint64_t n = random.between(2, round % 4 == 0 ? dispatch_limit : 1000);
        const std::uint64_t lb = random.between(1, n / 2), la = n - lb;
        const Pattern pattern = kelvara_test::all_patterns[round % 5];
        const Words a = make_words(random, la, pattern), b = make_words(random, lb, Pattern::uniform);
        Words expected(n);
        mpn_mul(reinterpret_cast<mp_limb_t*>(expected.data()), reinterpret_cast<const mp_limb_t*>(a.data()),
                static_cast<mp_size_t>(la), reinterpret_cast<const mp_limb_t*>(b.data()),
                static_cast<mp_size_t>(lb));
        ASSERT_EQ(product_of(own.context(), a, b), expected) << la << " x " << lb;
        ASSERT_EQ(product_of(own.context(), b, a), expected) << lb << " x " << la;
    }
}
#endif

// The long rows, on the level that runs by itself, with all tasks.
TEST(FftLongProduct, OnesAtTheLargestSizeOfEveryRow) {
    qmp::PushPoolParallelizer pool;
    const ParallelContext parallel{4, &pool};
    TwiddledContext own(largest_product, fft().psize(largest_product, 1), parallel);
    for (const FftParams& row : qmp::fft::size_table) {
        const std::uint64_t n = row.capacity_bits / 64;
        if (n <= dispatch_limit) continue;
        const Words a(n / 2, ones);
        GuardedWords product(n);
        fft().multiply(own.context(parallel), product.data(), a.data(), n / 2, a.data(), n / 2);
        expect_product_of_ones(product.data(), n / 2, n / 2);
        ASSERT_TRUE(product.guards_intact());
    }
    // Two operands of different length, on one task: the other kernels.
    const std::uint64_t n = 100000;
    const Words a(n, ones), b(n / 3, ones);
    expect_product_of_ones(product_of(own.context(ParallelContext::sequential()), a, b).data(), n, n / 3);
    EXPECT_TRUE(own.guards_intact());
}

// Passes split among tasks, blocks among tasks, rows and carries too: the same words.
TEST(FftLongProduct, TasksDoNotChangeIt) {
    qmp::PushPoolParallelizer pool;
    TwiddledContext own(60000, fft().psize(60000, 1));
    Random random(14);
    for (std::uint64_t n : {10240, 15000, 20000, 34000, 60000}) {
        const Words a = make_words(random, n / 2, Pattern::runs), b = make_words(random, n - n / 2);
        const Words expected = product_of(own.context(), a, b);
        for (std::uint64_t tasks : {2, 3, 8, 64}) {
            ASSERT_EQ(product_of(own.context(ParallelContext{tasks, &pool}), a, b), expected)
                << tasks << " tasks";
        }
    }
}

TEST(FftLongProduct, LevelsAgree) {
    TwiddledContext own(40000, fft().psize(40000, 1));
    Random random(15);
    for (std::uint64_t n : {5000, 10241, 25000, 40000}) {
        const Words a = make_words(random, n - n / 3), b = make_words(random, n / 3, Pattern::runs);
        const Words expected = product_of(own.context(), a, b);
        kelvara_test::for_every_level(
            [&](qmp::InstructionLevel) { EXPECT_EQ(product_of(own.context(), a, b), expected); });
    }
}

TEST(FftAlgorithm, Properties) {
    const qmp::Algorithm& algorithms64 = qmp::fft::algorithm64();
    const qmp::Algorithm& algorithms32 = qmp::fft::algorithm32();
    for (const qmp::Algorithm* algorithm : {&algorithms64, &algorithms32}) {
        EXPECT_EQ(algorithm->max_bits, 0x6000000u);
        EXPECT_STREQ(algorithm->key, "FFT");
        EXPECT_STREQ(algorithm->name, "Floating-Point FFT");
        EXPECT_STREQ(algorithm->version, "FFTv3");
        EXPECT_STREQ(algorithm->description, "Short-Vector FMA");
    }
    EXPECT_EQ(&qmp::fft::algorithm64(), &qmp::fft::algorithm64());
    EXPECT_EQ(&qmp::fft::algorithm32(), &qmp::fft::algorithm32());
}

TEST(FftAlgorithm, ScratchNeverShrinks) {
    std::uint64_t before = 0;
    for (const FftParams& row : qmp::fft::size_table) {
        const std::uint64_t n = row.capacity_bits / 64;
        for (std::uint64_t words : {n - 1, n}) {
            const std::uint64_t bytes = fft().psize(words, 1);
            EXPECT_GE(bytes, before);
            EXPECT_GE(bytes, 24 * qmp::fft::fft_params(64 * words).points);
            before = bytes;
            EXPECT_EQ(fft().psize(words, 64), bytes);
            EXPECT_EQ(fft().psize_halved(words, 1), bytes);
            EXPECT_EQ(qmp::fft::algorithm32().psize(2 * words, 1), bytes);
        }
    }
    EXPECT_THROW(fft().psize(largest_product + 1, 1), qmp::LimitExceededException);
    EXPECT_THROW(qmp::fft::algorithm32().psize(2 * largest_product + 1, 1), qmp::LimitExceededException);
}

TEST(FftAlgorithm, ShortTwiddlesAndShortScratch) {
    TwiddledContext own(320, fft().psize(320, 1));
    Random random(16);
    const Words a = make_words(random, 200), b = make_words(random, 200);
    GuardedWords product(400);

    // 320 words are 5 * 2^8 x 16; 321 need 5 * 2^8 x 18, the same length, which the tables cover.
    const std::uint64_t points = qmp::fft::fft_params(64 * 320).points;
    fft().multiply(own.context(), product.data(), a.data(), 160, b.data(), 160);
    // 400 words are 3 * 2^9 points.
    try {
        fft().multiply(own.context(), product.data(), a.data(), 200, b.data(), 200);
        FAIL();
    } catch (const qmp::LimitExceededException& e) {
        EXPECT_EQ(e.limit(), 320u);
        EXPECT_EQ(e.attempted(), 400u);
    }
    MultiplyContext none = own.context();
    none.twiddles = nullptr;
    EXPECT_THROW(fft().multiply(none, product.data(), a.data(), 60, b.data(), 60),
                 qmp::LimitExceededException);
    EXPECT_THROW(fft().multiply(own.context(), product.data(), a.data(), largest_product, b.data(), 1),
                 qmp::LimitExceededException);

    // Exactly enough scratch, and one word less.
    MultiplyContext tight = own.context();
    tight.scratch_words = 3 * points;
    fft().multiply(tight, product.data(), a.data(), 160, b.data(), 160);
    tight.scratch_words -= 1;
    const auto expect_short = [&](const char* function, auto run) {
        try {
            run();
            ADD_FAILURE() << function;
        } catch (const qmp::BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), function);
            EXPECT_EQ(e.buffer_size(), 3 * points - 1);
            EXPECT_EQ(e.required_size(), 3 * points);
        }
    };
    expect_short("FftAlgorithm::multiply()",
                 [&] { fft().multiply(tight, product.data(), a.data(), 160, b.data(), 160); });
    expect_short("FftAlgorithm::upper_product()",
                 [&] { fft().upper_product(tight, product.data(), 0, 320, a.data(), 160, b.data(), 160); });
    expect_short("FftAlgorithm::upper_square()",
                 [&] { fft().upper_square(tight, product.data(), 0, 320, a.data(), 160); });
}

TEST(FftTransformParameters, Sizes) {
    for (std::uint64_t n : {1, 32, 33, 59, 100, 1000, 10240}) {
        qmp::TransformParametersBox box;
        const qmp::TransformParameters& parameters = fft().construct(box, n);
        const FftParams& params = qmp::fft::fft_params(64 * n);
        EXPECT_EQ(parameters.convolution_bits, 64 * n);
        EXPECT_EQ(parameters.convolution_words(), n);
        EXPECT_EQ(8 * parameters.operand_words, 8 * params.points);
        EXPECT_EQ(8 * parameters.scratch_words, 4 * params.points);
        EXPECT_EQ(parameters.operand_words % 8, 0u);
        EXPECT_EQ(parameters.scratch_words % 8, 0u);
        // Two operands and twice the scratch are what psize promises.
        EXPECT_LE(8 * (2 * parameters.operand_words + 2 * parameters.scratch_words), fft().psize(n, 1));
    }
    qmp::TransformParametersBox box;
    EXPECT_EQ(fft().construct(box, 30, 40).convolution_words(), 70u);
    EXPECT_THROW(fft().construct(box, largest_product + 1), qmp::LimitExceededException);
}

TEST(FftTransformParameters, CompatibleWhereTheConvolutionIsTheSame) {
    qmp::TransformParametersBox a, b, c, d;
    const auto& smaller = fft().construct(a, 97);  // both 3 * 2^7 x 20
    const auto& larger = fft().construct(b, 120);
    const auto& other = fft().construct(c, 121);  // 1 * 2^9 x 16
    EXPECT_TRUE(smaller.compatible_with(larger));
    EXPECT_TRUE(larger.compatible_with(smaller));
    EXPECT_FALSE(larger.compatible_with(other));
    EXPECT_FALSE(larger.compatible_with(qmp::basecase::algorithm64().construct(d, 120)));
}

TEST(FftTransformParameters, TransformsCombine) {
    TwiddledContext own(200, fft().psize(200, 1));
    Random random(17);
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters = fft().construct(box, 150);
    const Words a = make_words(random, 70, Pattern::runs), b = make_words(random, 80),
                c = make_words(random, 60);
    GuardedWords ta(parameters.operand_words), tb(parameters.operand_words), tc(parameters.operand_words);
    parameters.forward(own.context(), ta.data(), a.data(), a.size());
    parameters.forward(own.context(), tb.data(), b.data(), b.size());
    parameters.forward_for_square(own.context(), tc.data(), c.data(), c.size());

    // The first operand is consumed, the second one kept: b serves twice.
    const Words kept = tb.value();
    GuardedWords product(150);
    parameters.inverse_multiply(own.context(), ta.data(), tb.data(), product.data(), 0, 150);
    EXPECT_EQ(product.value(), kelvara_test::reference_product(a, b));
    EXPECT_EQ(tb.value(), kept);
    GuardedWords square(120);
    GuardedWords tc2(parameters.operand_words);
    parameters.forward(own.context(), tc2.data(), c.data(), c.size());
    parameters.inverse_square(own.context(), tc.data(), square.data(), 0, 120);
    EXPECT_EQ(square.value(), kelvara_test::reference_product(c, c));
    GuardedWords second(140 - 17);
    parameters.inverse_multiply(own.context(), tc2.data(), tb.data(), second.data(), 17, 140);
    const Words expected = kelvara_test::reference_product(c, b);
    EXPECT_EQ(second.value(), Words(expected.begin() + 17, expected.begin() + 140));
    for (GuardedWords* buffer : {&ta, &tb, &tc, &tc2, &product, &square, &second}) {
        EXPECT_TRUE(buffer->guards_intact());
    }
    EXPECT_TRUE(own.guards_intact());
}

// A product of n words in a convolution that holds c < n of them: the words [n - c, c) are the product's.
TEST(FftTransformParameters, LongProductsWrapIntoTheLowWords) {
    Random random(18);
    TwiddledContext own(400, fft().psize(400, 1));
    for (std::uint64_t c : {32, 40, 64, 96, 120, 320, 380}) {
        qmp::TransformParametersBox box;
        const qmp::TransformParameters& parameters = fft().construct(box, c);
        for (std::uint64_t wrapped : {1, 3, 10}) {
            const std::uint64_t n = c + wrapped, la = n / 2, lb = n - la;
            const Words a = make_words(random, la, Pattern::runs), b = make_words(random, lb);
            const Words whole = kelvara_test::reference_product(a, b);
            GuardedWords ta(parameters.operand_words), tb(parameters.operand_words), middle(c - wrapped);
            parameters.forward(own.context(), ta.data(), a.data(), la);
            parameters.forward(own.context(), tb.data(), b.data(), lb);
            parameters.inverse_multiply(own.context(), ta.data(), tb.data(), middle.data(), wrapped, c);
            // A carry out of the wrapped words would only change the lowest of these.
            const Words expected(whole.begin() + static_cast<std::ptrdiff_t>(wrapped),
                                 whole.begin() + static_cast<std::ptrdiff_t>(c));
            const Words result = middle.value();
            EXPECT_TRUE(std::equal(result.begin() + 1, result.end(), expected.begin() + 1));
            EXPECT_LE(result[0] - expected[0], 1u);
        }
    }
}

TEST(FftTransformParameters, ShortScratchAndTwiddles) {
    TwiddledContext own(100, fft().psize(100, 1));
    qmp::TransformParametersBox box, larger_box;
    const qmp::TransformParameters& parameters = fft().construct(box, 100);
    Random random(19);
    const Words a = make_words(random, 50);
    GuardedWords ta(parameters.operand_words), product(100);
    MultiplyContext context = own.context();
    context.scratch_words = parameters.scratch_words;
    parameters.forward(context, ta.data(), a.data(), 50);
    context.scratch_words -= 1;
    try {
        parameters.inverse_square(context, ta.data(), product.data(), 0, 100);
        FAIL();
    } catch (const qmp::BufferTooSmallException& e) {
        EXPECT_EQ(e.required_size(), parameters.scratch_words);
        EXPECT_EQ(e.buffer_size(), parameters.scratch_words - 1);
    }
    context.scratch_words += 1;
    parameters.inverse_square(context, ta.data(), product.data(), 0, 100);
    EXPECT_EQ(product.value(), kelvara_test::reference_product(a, a));

    const qmp::TransformParameters& larger = fft().construct(larger_box, 320);
    GuardedWords large(larger.operand_words);
    EXPECT_THROW(larger.forward(own.context(), large.data(), a.data(), 50), qmp::LimitExceededException);
}

#if GTEST_HAS_DEATH_TEST
TEST(FftTransformParametersDeathTest, Misuse) {
    TwiddledContext own(100, fft().psize(100, 1));
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters = fft().construct(box, 100);
    const Words a(101, 1);
    GuardedWords ta(parameters.operand_words), product(101);
    EXPECT_CRASH(parameters.forward(own.context(), ta.data(), a.data(), 101), "Invalid Function Parameters:");
    EXPECT_CRASH(parameters.inverse_square(own.context(), ta.data(), product.data(), 0, 101),
                 "Invalid Function Parameters:");
    EXPECT_CRASH(parameters.inverse_square(own.context(), ta.data(), product.data(), 6, 5),
                 "Invalid Function Parameters:");
}
#endif

}  // namespace
