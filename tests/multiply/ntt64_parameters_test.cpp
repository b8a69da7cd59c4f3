// One size of 64-bit transform: cyclic and negacyclic products of full length.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "errors/convolution_exceptions.h"
#include "multiply/instruction_levels.h"
#include "multiply/ntt64/ntt64_params.h"
#include "multiply/ntt64/ntt64_transform_parameters.h"
#include "multiply/ntt64/prime_table.h"
#include "multiply/ntt64/size_tables.h"
#include "multiply/ntt64/transform.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/fatal.h"
#include "support/random_words.h"
#include "support/residues_reference.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::cyclic_residue;
using kelvara_test::GuardedWords;
using kelvara_test::negacyclic_residue;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::ReferenceResidue;
using qmp::MultiplyContext;
using qmp::ParallelContext;
using qmp::SizeParams;
using qmp::Word;
using qmp::ntt64::limit_tables;
using qmp::ntt64::Ntt64TransformParameters;
using Words = std::vector<Word>;

constexpr Word ones = ~Word{0};

// Buffers for one size's operations.
class Bench {
  public:
    explicit Bench(const SizeParams& size)
        : params(size, 0), a(params.operand_words), b(params.operand_words), scratch_(params.scratch_words) {}

    MultiplyContext context() { return sequential_context(scratch_); }
    MultiplyContext context(ParallelContext parallel) {
        const MultiplyContext own = sequential_context(scratch_);
        return {parallel, own.twiddles, own.scratch, own.scratch_words};
    }
    bool guards_intact() const { return a.guards_intact() && b.guards_intact() && scratch_.guards_intact(); }

    Words cyclic(const MultiplyContext& with, const Words& x, const Words& y) {
        params.forward(with, a.data(), x.data(), x.size());
        params.forward(with, b.data(), y.data(), y.size());
        const Words kept = b.value();
        GuardedWords product(params.convolution_words());
        params.inverse_multiply(with, a.data(), b.data(), product.data(), 0, params.convolution_words());
        EXPECT_EQ(b.value(), kept);
        EXPECT_TRUE(product.guards_intact());
        return product.value();
    }
    ReferenceResidue negacyclic(const MultiplyContext& with, const Words& x, const Words& y) {
        params.forward_negacyclic(with, a.data(), x.data(), x.size());
        params.forward_negacyclic(with, b.data(), y.data(), y.size());
        const Words kept = b.value();
        GuardedWords product(params.convolution_words());
        const bool degenerate = params.inverse_multiply_negacyclic(with, a.data(), b.data(), product.data());
        EXPECT_EQ(b.value(), kept);
        EXPECT_TRUE(product.guards_intact());
        return {product.value(), degenerate};
    }

    Ntt64TransformParameters params;
    GuardedWords a, b;

  private:
    GuardedWords scratch_;
};

// A residue modulo R^n - 1 with its least zero.
Words least(Words words) {
    if (std::all_of(words.begin(), words.end(), [](Word w) { return w == ones; })) {
        std::fill(words.begin(), words.end(), 0);
    }
    return words;
}

void expect_products(Bench& bench, const MultiplyContext& with, const Words& x, const Words& y) {
    const std::uint64_t n = bench.params.convolution_words();
    const Words product = kelvara_test::reference_product(x, y);
    ASSERT_EQ(least(bench.cyclic(with, x, y)), cyclic_residue(product, n).words);
    ASSERT_EQ(bench.negacyclic(with, x, y), negacyclic_residue(product, n));
}

// Every number of primes with every multiplier, at short lengths of both parities: operands as long as the
// convolution, so that all wraps around.
TEST(Ntt64Parameters, FullLengthProductsOfEverySet) {
    Random random(30);
    for (std::uint32_t primes = 5; primes <= 9; ++primes) {
        for (std::uint32_t multiplier : {1, 3, 5, 7}) {
            for (std::uint32_t exponent : {6, 7}) {
                Bench bench(limit_tables.size(primes, multiplier, exponent));
                const std::uint64_t n = bench.params.convolution_words();
                ASSERT_EQ(n, (primes - 1) * (std::uint64_t{multiplier} << exponent) / 2);
                const Words all(n, ones), some = make_words(random, n, Pattern::runs);
                expect_products(bench, bench.context(), all, all);
                expect_products(bench, bench.context(), all, some);
                expect_products(bench, bench.context(), some, make_words(random, n / 3 + 1));
                EXPECT_TRUE(bench.guards_intact());
            }
        }
    }
}

// R^(n-1) * R is R^n: -1 modulo R^n + 1, which n words do not hold.
TEST(Ntt64Parameters, DegenerateProduct) {
    for (std::uint32_t primes : {5, 6, 9}) {
        Bench bench(limit_tables.size(primes, 3, 6));
        const std::uint64_t n = bench.params.convolution_words();
        Words top(n, 0), second{0, 1};
        top[n - 1] = 1;
        ReferenceResidue found = bench.negacyclic(bench.context(), top, second);
        EXPECT_TRUE(found.degenerate);
        EXPECT_EQ(found.words, Words(n, 0));
        // 2^63 R^(n-1) * 2 as well; twice that is not.
        top[n - 1] = Word{1} << 63;
        EXPECT_TRUE(bench.negacyclic(bench.context(), top, {2}).degenerate);
        found = bench.negacyclic(bench.context(), top, {4});
        EXPECT_FALSE(found.degenerate);
        EXPECT_EQ(found, negacyclic_residue(kelvara_test::reference_product(top, {4}), n));
        // Zero, and R^n - 1, which is zero modulo it.
        EXPECT_EQ(bench.cyclic(bench.context(), Words(n, 0), second), Words(n, 0));
        EXPECT_EQ(least(bench.cyclic(bench.context(), Words(n, ones), second)), Words(n, 0));
    }
}

TEST(Ntt64Parameters, SquaresFromOneTransform) {
    Random random(31);
    Bench bench(limit_tables.size(7, 5, 6));
    const std::uint64_t n = bench.params.convolution_words();
    const Words x = make_words(random, n, Pattern::runs);
    const Words square = kelvara_test::reference_product(x, x);
    GuardedWords product(n);
    bench.params.forward_for_square(bench.context(), bench.a.data(), x.data(), n);
    bench.params.inverse_square(bench.context(), bench.a.data(), product.data(), 0, n);
    EXPECT_EQ(least(product.value()), cyclic_residue(square, n).words);
    bench.params.forward_negacyclic(bench.context(), bench.a.data(), x.data(), n);
    const bool degenerate = bench.params.inverse_multiply_negacyclic(bench.context(), bench.a.data(),
                                                                     bench.a.data(), product.data());
    EXPECT_EQ((ReferenceResidue{product.value(), degenerate}), negacyclic_residue(square, n));
}

// Rows and columns longer than what is finished in cache at a time, odd and even; x * (R^k - 1) is told by a
// subtraction.
TEST(Ntt64Parameters, LongRowsAndColumns) {
    Random random(35);
    Bench bench(limit_tables.size(5, 1, 19));
    const std::uint64_t n = bench.params.convolution_words(), k = n / 2;
    const Words x = make_words(random, k, Pattern::runs), y(k, ones);
    Words expected(n, 0);
    std::copy(x.begin(), x.end(), expected.begin() + static_cast<std::ptrdiff_t>(k));
    Word borrow = 0;
    for (std::uint64_t i = 0; i < n; ++i) {
        const qmp::DoubleWord taken = static_cast<qmp::DoubleWord>(i < k ? x[i] : 0) + borrow;
        borrow = taken > expected[i] ? 1 : 0;
        expected[i] -= static_cast<Word>(taken);
    }
    for (const auto level : {qmp::current_level(), qmp::InstructionLevel::scalar}) {
        qmp::force_level(qmp::name_of(level));
        EXPECT_EQ(bench.cyclic(bench.context(), x, y), expected) << qmp::name_of(level);
        EXPECT_EQ(bench.negacyclic(bench.context(), x, y), (ReferenceResidue{expected, false}))
            << qmp::name_of(level);
    }
    qmp::force_level("");
    EXPECT_TRUE(bench.guards_intact());
}

// Enough points for several tasks in every pass, and carries that run through all blocks.
TEST(Ntt64Parameters, TasksDoNotChangeIt) {
    qmp::PushPoolParallelizer pool;
    Random random(32);
    Bench bench(limit_tables.size(6, 7, 12));
    const std::uint64_t n = bench.params.convolution_words();
    Words one_above(n, 0), minus_one(n, ones);
    one_above[n - 1] = Word{1} << 63;
    for (const Words& x : {make_words(random, n), minus_one, one_above}) {
        for (const Words& y : {make_words(random, n, Pattern::runs), minus_one, Words{2}}) {
            const Words cyclic = bench.cyclic(bench.context(), x, y);
            const ReferenceResidue negacyclic = bench.negacyclic(bench.context(), x, y);
            for (std::uint64_t tasks : {2, 8}) {
                const MultiplyContext context = bench.context(ParallelContext{tasks, &pool});
                ASSERT_EQ(bench.cyclic(context, x, y), cyclic);
                ASSERT_EQ(bench.negacyclic(context, x, y), negacyclic);
            }
        }
    }
    EXPECT_TRUE(bench.guards_intact());
}

TEST(Ntt64Parameters, Windows) {
    Random random(33);
    Bench bench(limit_tables.size(5, 1, 7));
    const std::uint64_t n = bench.params.convolution_words();
    const Words x = make_words(random, n / 2), y = make_words(random, n - n / 2);
    const Words expected = kelvara_test::reference_product(x, y);
    bench.params.forward(bench.context(), bench.b.data(), y.data(), y.size());
    for (std::uint64_t first : {std::uint64_t{0}, std::uint64_t{1}, n / 2, n}) {
        for (std::uint64_t end : {first, (first + n) / 2, n}) {
            bench.params.forward(bench.context(), bench.a.data(), x.data(), x.size());
            GuardedWords part(end - first);
            bench.params.inverse_multiply(bench.context(), bench.a.data(), bench.b.data(), part.data(), first,
                                          end);
            EXPECT_EQ(part.value(), Words(expected.begin() + static_cast<std::ptrdiff_t>(first),
                                          expected.begin() + static_cast<std::ptrdiff_t>(end)));
            EXPECT_TRUE(part.guards_intact());
        }
    }
}

TEST(Ntt64Parameters, SizesAndCompatibility) {
    const Ntt64TransformParameters params(1000);  // 64000 bits
    EXPECT_EQ(params.size(), limit_tables.size(5, 1, 10));
    EXPECT_EQ(params.convolution_bits, 131072u);
    EXPECT_EQ(params.operand_words, 5u * 1024);
    EXPECT_EQ(params.scratch_words % 8, 0u);
    EXPECT_TRUE(params.compatible_with(Ntt64TransformParameters(2048)));
    EXPECT_FALSE(params.compatible_with(Ntt64TransformParameters(2049)));
    EXPECT_FALSE(params.compatible_with(Ntt64TransformParameters(qmp::halved(params.size()), 1)));
    EXPECT_THROW(Ntt64TransformParameters(0x3800000000000000 / 64 + 1), qmp::LimitExceededException);
    for (const SizeParams& size :
         {limit_tables.size(4, 1, 10), limit_tables.size(10, 1, 10), limit_tables.size(5, 9, 10),
          limit_tables.size(5, 2, 10), limit_tables.size(5, 1, 5), SizeParams{5, 1, 10, 131071}}) {
        EXPECT_THROW(Ntt64TransformParameters(size, 1), qmp::InvalidParametersException);
    }
}

// Every listed size, and its half, can be built; their products fit what they say.
TEST(Ntt64Parameters, EveryListedSize) {
    const auto check = [](const SizeParams& size) {
        const Ntt64TransformParameters params(size, 1), half(qmp::halved(size), 1);
        EXPECT_EQ(params.convolution_bits, size.capacity_bits);
        EXPECT_EQ(params.convolution_bits % 64, 0u);
        EXPECT_EQ(params.operand_words, size.primes * size.points());
        EXPECT_EQ(2 * half.convolution_words(), params.convolution_words());
        EXPECT_EQ(2 * params.operand_words + params.scratch_words, qmp::ntt64::product_scratch_words(size));
        EXPECT_LT(params.scratch_words, params.operand_words + 8192);
    };
    const std::uint64_t all = ~std::uint64_t{0};
    limit_tables.visit_rows_up_to(qmp::ntt64::standard_rows, all, check);
    limit_tables.visit_rows_up_to(qmp::ntt64::specialised_rows, all, check);
}

// The longest size of a set has no root of unity of twice its order.
TEST(Ntt64Parameters, LongestNegacyclicForm) {
    const std::uint32_t longest = qmp::ntt64::prime_set(5, 1).exponent;
    EXPECT_EQ(longest, 54u);
    const Ntt64TransformParameters params(limit_tables.size(5, 1, longest), 0);
    EXPECT_THROW(Ntt64TransformParameters(limit_tables.size(5, 1, longest + 1), 0),
                 qmp::LimitExceededException);
    EXPECT_THROW(qmp::ntt64::Plan(params.size(), true), qmp::LimitExceededException);
    const qmp::ntt64::Plan half(qmp::halved(params.size()), true);
    EXPECT_EQ(half.points, std::uint64_t{1} << 53);
}

// A transform that lost a bit gives coefficients all over the place.
TEST(Ntt64Parameters, CorruptedTransform) {
    Random random(34);
    Bench bench(limit_tables.size(8, 3, 6));
    const std::uint64_t n = bench.params.convolution_words();
    const Words x = make_words(random, n / 2);
    GuardedWords product(n);
    for (const bool negacyclic : {false, true}) {
        if (negacyclic) {
            bench.params.forward_negacyclic(bench.context(), bench.a.data(), x.data(), x.size());
            bench.params.forward_negacyclic(bench.context(), bench.b.data(), x.data(), x.size());
        } else {
            bench.params.forward(bench.context(), bench.a.data(), x.data(), x.size());
            bench.params.forward(bench.context(), bench.b.data(), x.data(), x.size());
        }
        bench.a.data()[100] ^= 1;
        try {
            if (negacyclic) {
                bench.params.inverse_multiply_negacyclic(bench.context(), bench.a.data(), bench.b.data(),
                                                         product.data());
            } else {
                bench.params.inverse_multiply(bench.context(), bench.a.data(), bench.b.data(), product.data(),
                                              0, n);
            }
            FAIL();
        } catch (const qmp::ConvolutionFailedException& e) {
            EXPECT_EQ(e.function(), "Ntt64TransformParameters::inverse_multiply()");
            EXPECT_EQ(e.message(), "Coefficient is too large.");
            EXPECT_EQ(e.limit(), 256u);  // at or above 192 points
            EXPECT_GE(e.found(), e.limit());
        }
    }
}

TEST(Ntt64Parameters, ScratchOneShort) {
    Bench bench(limit_tables.size(5, 1, 7));
    MultiplyContext context = bench.context();
    context.scratch_words -= 1;
    const Words x(4, 1);
    EXPECT_THROW(bench.params.forward(context, bench.a.data(), x.data(), 4), qmp::BufferTooSmallException);
    EXPECT_THROW(bench.params.inverse_multiply(context, bench.a.data(), bench.b.data(), bench.a.data(), 0, 1),
                 qmp::BufferTooSmallException);
    EXPECT_THROW(bench.params.forward_negacyclic(context, bench.a.data(), x.data(), 4),
                 qmp::BufferTooSmallException);
    EXPECT_THROW(
        bench.params.inverse_multiply_negacyclic(context, bench.a.data(), bench.b.data(), bench.a.data()),
        qmp::BufferTooSmallException);
}

#if GTEST_HAS_DEATH_TEST
TEST(Ntt64ParametersDeathTest, LengthsBeyondTheConvolution) {
    Bench bench(limit_tables.size(5, 1, 7));
    const std::uint64_t n = bench.params.convolution_words();
    const Words x(n + 1, 1);
    EXPECT_CRASH(bench.params.forward(bench.context(), bench.a.data(), x.data(), n + 1),
                 "Invalid Function Parameters:");
    EXPECT_CRASH(bench.params.inverse_multiply(bench.context(), bench.a.data(), bench.b.data(),
                                               bench.a.data(), 0, n + 1),
                 "Invalid Function Parameters:");
}
#endif

}  // namespace
