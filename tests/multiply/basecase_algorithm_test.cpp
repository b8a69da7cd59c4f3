#include "multiply/basecase/basecase_algorithm.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "errors/exception.h"
#include "multiply/basecase/karatsuba.h"
#include "support/fatal.h"
#include "support/random_words.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::make_words;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::reference_product;
using kelvara_test::sequential_context;
using qmp::Word;
using Words = std::vector<Word>;

const qmp::Algorithm64& bkt() {
    return qmp::basecase::algorithm64();
}

Words slice(const Words& words, std::uint64_t first, std::uint64_t end) {
    return Words(words.begin() + static_cast<std::ptrdiff_t>(first),
                 words.begin() + static_cast<std::ptrdiff_t>(end));
}

std::uint64_t words_of_bytes(std::uint64_t bytes) {
    return (bytes + 7) / 8;
}

TEST(BasecaseAlgorithm, DescribesItself) {
    for (const qmp::Algorithm* algorithm :
         {static_cast<const qmp::Algorithm*>(&qmp::basecase::algorithm64()),
          static_cast<const qmp::Algorithm*>(&qmp::basecase::algorithm32())}) {
        EXPECT_EQ(algorithm->max_bits, 65536u);
        EXPECT_STREQ(algorithm->key, "BKT");
        EXPECT_STREQ(algorithm->name, "Basecase/Karatsuba");
        EXPECT_STREQ(algorithm->version, "MULB");
        EXPECT_STREQ(algorithm->description, "Basic Multiply");
    }
}

TEST(BasecaseAlgorithm, PsizeFormulaGrowsAndCoversTheParameterObject) {
    std::uint64_t previous = 0;
    for (std::uint64_t n = 1; n <= 1024; ++n) {
        const std::uint64_t bytes = bkt().psize(n, 1);
        const std::uint64_t operand = (8 * n + 8 + 63) / 64 * 64;
        ASSERT_EQ(bytes, qmp::karatsuba_scratch_bytes<Word>(n) + 16 * n + 2 * operand) << n;
        ASSERT_EQ(bytes, bkt().psize(n, 64));
        ASSERT_EQ(bytes, bkt().psize_halved(n, 1));
        ASSERT_GE(bytes, previous);
        previous = bytes;
        qmp::TransformParametersBox box;
        const qmp::TransformParameters& parameters = bkt().construct(box, n);
        ASSERT_EQ(parameters.convolution_bits, 64 * n);
        ASSERT_EQ(parameters.operand_words, operand / 8);
        ASSERT_EQ(8 * parameters.scratch_words, qmp::karatsuba_scratch_bytes<Word>(n) + 16 * n);
        ASSERT_LE(8 * (2 * parameters.operand_words + parameters.scratch_words), bytes);
    }
    // The 32-bit kind counts its own words; its parameter objects count words of 64 bits.
    for (std::uint64_t n = 1; n <= 1024; ++n) {
        qmp::TransformParametersBox box;
        const qmp::TransformParameters& parameters = qmp::basecase::algorithm32().construct(box, n);
        ASSERT_LE(8 * (2 * parameters.operand_words + parameters.scratch_words),
                  qmp::basecase::algorithm32().psize(2 * n, 1));
    }
}

TEST(BasecaseAlgorithm, FullProductsWithinPsize) {
    Random random(20);
    for (std::uint64_t n = 2; n <= 130; n += n < 64 ? 1 : 7) {
        for (std::uint64_t la = 1; la < n; ++la) {
            const Words a = make_words(random, la, Pattern::uniform);
            const Words b = make_words(random, n - la, Pattern::ones);
            GuardedWords scratch(bkt().psize(n, 1) / 8);
            GuardedWords product(n);
            bkt().multiply(sequential_context(scratch), product.data(), a.data(), la, b.data(), n - la);
            ASSERT_EQ(product.value(), reference_product(a, b)) << la << " of " << n;
            ASSERT_TRUE(scratch.guards_intact() && product.guards_intact());
        }
    }
}

TEST(BasecaseAlgorithm, UpperProductsWithinPsize) {
    Random random(21);
    for (int round = 0; round < 3000; ++round) {
        const std::uint64_t la = random.between(1, 60);
        const std::uint64_t lb = random.between(1, 60);
        const std::uint64_t skip = random.between(0, la + lb - 1);
        const std::uint64_t end = random.between(skip + 1, la + lb);
        const bool ones = round % 3 == 0;
        const Words a = make_words(random, la, ones ? Pattern::ones : Pattern::uniform);
        const Words b = make_words(random, lb, ones ? Pattern::ones : Pattern::runs);
        GuardedWords scratch(bkt().psize(la + lb, 1) / 8);
        GuardedWords upper(end - skip);
        bkt().upper_product(sequential_context(scratch), upper.data(), skip, end, a.data(), la, b.data(), lb);
        ASSERT_TRUE(scratch.guards_intact() && upper.guards_intact());
        // Carries from dropped words are lost: at most two units of the lowest word, which may run up.
        Words expected = slice(reference_product(a, b), skip, end);
        int distance = 0;
        while (expected != upper.value() && distance < 2) {
            for (std::size_t i = 0; i < expected.size() && expected[i]-- == 0; ++i) {
            }
            ++distance;
        }
        ASSERT_EQ(upper.value(), expected) << la << " x " << lb << ", words " << skip << " to " << end;
        // Nothing is dropped from a product whose lowest words are wanted.
        if (skip <= std::min(la, lb)) {
            ASSERT_EQ(distance, 0);
        }
    }
}

TEST(BasecaseAlgorithm, UpperSquaresWithinPsize) {
    Random random(22);
    for (int round = 0; round < 2000; ++round) {
        const std::uint64_t la = random.between(1, 70);
        const std::uint64_t skip = random.between(0, 2 * la - 1);
        const std::uint64_t end = random.between(skip + 1, 2 * la);
        const Words a = make_words(random, la, round % 3 == 0 ? Pattern::ones : Pattern::uniform);
        GuardedWords scratch(bkt().psize(2 * la, 1) / 8);
        GuardedWords upper(end - skip);
        bkt().upper_square(sequential_context(scratch), upper.data(), skip, end, a.data(), la);
        ASSERT_TRUE(scratch.guards_intact() && upper.guards_intact());
        Words expected = slice(reference_product(a, a), skip, end);
        int distance = 0;
        while (expected != upper.value() && distance < 2) {
            for (std::size_t i = 0; i < expected.size() && expected[i]-- == 0; ++i) {
            }
            ++distance;
        }
        ASSERT_EQ(upper.value(), expected) << la << ", words " << skip << " to " << end;
        if (skip <= la) {
            ASSERT_EQ(distance, 0);
        }
    }
}

TEST(BasecaseAlgorithm, ThirtyTwoBitWordsFormTheSameProducts) {
    Random random(23);
    const qmp::Algorithm32& bkt32 = qmp::basecase::algorithm32();
    for (std::uint64_t la : {1, 4, 17, 18, 29, 40}) {
        for (std::uint64_t lb : {1, 5, 9, 30, 40}) {
            const Words a = make_words(random, la, Pattern::uniform);
            const Words b = make_words(random, lb, Pattern::ones);
            const Words expected = reference_product(a, b);
            std::vector<std::uint32_t> a32(2 * la), b32(2 * lb), product(2 * (la + lb), 0x55555555);
            std::memcpy(a32.data(), a.data(), 8 * la);
            std::memcpy(b32.data(), b.data(), 8 * lb);
            const std::uint64_t n = 2 * (la + lb);
            GuardedWords scratch(words_of_bytes(bkt32.psize(n, 1)));
            const qmp::MultiplyContext context = sequential_context(scratch);
            const auto words_of = [&](std::uint64_t count) {
                Words words(count);
                std::memcpy(words.data(), product.data(), 8 * count);
                return words;
            };
            bkt32.multiply(context, product.data(), a32.data(), 2 * la, b32.data(), 2 * lb);
            ASSERT_EQ(words_of(la + lb), expected);
            bkt32.upper_product(context, product.data(), 2, n, a32.data(), 2 * la, b32.data(), 2 * lb);
            ASSERT_EQ(words_of(la + lb - 1), slice(expected, 1, la + lb));
            std::vector<std::uint32_t> square(4 * la);
            GuardedWords square_scratch(words_of_bytes(bkt32.psize(4 * la, 1)));
            bkt32.upper_square(sequential_context(square_scratch), square.data(), 0, 4 * la, a32.data(),
                               2 * la);
            ASSERT_EQ(std::memcmp(square.data(), reference_product(a, a).data(), 16 * la), 0);
            ASSERT_TRUE(scratch.guards_intact() && square_scratch.guards_intact());
        }
    }
}

TEST(BasecaseAlgorithm, ScratchOneWordShort) {
    Random random(24);
    const Words a = make_words(random, 40);
    const Words b = make_words(random, 30);
    Words product(80);
    const auto short_by_one = [&](const char* function, std::uint64_t needed, auto run) {
        GuardedWords scratch(needed);
        run(sequential_context(scratch));
        qmp::MultiplyContext context = sequential_context(scratch);
        context.scratch_words = needed - 1;
        try {
            run(context);
            ADD_FAILURE() << function;
        } catch (const qmp::BufferTooSmallException& exception) {
            EXPECT_EQ(exception.function(), function);
            EXPECT_EQ(exception.buffer_size(), needed - 1);
            EXPECT_EQ(exception.required_size(), needed);
        }
    };
    short_by_one("BasecaseKaratsuba::multiply()", qmp::mulK_scratch<Word>(40, 30), [&](const auto& context) {
        bkt().multiply(context, product.data(), a.data(), 40, b.data(), 30);
    });
    short_by_one("BasecaseKaratsuba::upper_product()", 70 + qmp::mulK_scratch<Word>(40, 30),
                 [&](const auto& context) {
                     bkt().upper_product(context, product.data(), 20, 70, a.data(), 40, b.data(), 30);
                 });
    short_by_one(
        "BasecaseKaratsuba::upper_square()", 80 + qmp::sqrK_scratch<Word>(40),
        [&](const auto& context) { bkt().upper_square(context, product.data(), 20, 80, a.data(), 40); });
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters = bkt().construct(box, 70);
    Words ta(parameters.operand_words), tb(parameters.operand_words);
    short_by_one("BasecaseKaratsuba::inverse_multiply()", parameters.scratch_words, [&](const auto& context) {
        parameters.forward(context, ta.data(), a.data(), 40);
        parameters.forward(context, tb.data(), b.data(), 30);
        parameters.inverse_multiply(context, ta.data(), tb.data(), product.data(), 0, 70);
    });
    short_by_one("BasecaseKaratsuba::inverse_square()", parameters.scratch_words, [&](const auto& context) {
        parameters.forward_for_square(context, ta.data(), a.data(), 40);
        parameters.inverse_square(context, ta.data(), product.data(), 0, 70);
    });
}

TEST(BasecaseAlgorithm, OwnLimit) {
    GuardedWords scratch(20000);
    const qmp::MultiplyContext context = sequential_context(scratch);
    Random random(25);
    const Words a = make_words(random, 513);
    Words product(1026);
    bkt().multiply(context, product.data(), a.data(), 512, a.data() + 1, 512);
    EXPECT_EQ(slice(product, 0, 1024), reference_product(slice(a, 0, 512), slice(a, 1, 513)));
    EXPECT_THROW(bkt().multiply(context, product.data(), a.data(), 513, a.data() + 1, 512),
                 qmp::LimitExceededException);
    EXPECT_THROW(bkt().upper_product(context, product.data(), 0, 1025, a.data(), 513, a.data() + 1, 512),
                 qmp::LimitExceededException);
    EXPECT_THROW(bkt().upper_square(context, product.data(), 0, 1026, a.data(), 513),
                 qmp::LimitExceededException);
    qmp::TransformParametersBox box;
    try {
        bkt().construct(box, 1025);
        ADD_FAILURE();
    } catch (const qmp::LimitExceededException& exception) {
        EXPECT_EQ(exception.function(), "BasecaseKaratsuba::construct()");
        EXPECT_EQ(exception.limit(), 1024u);
        EXPECT_EQ(exception.attempted(), 1025u);
    }
}

// Both word kinds' parameter objects on 64-bit words.
class BasecaseTransforms : public testing::TestWithParam<bool> {
  protected:
    const qmp::TransformParameters& construct(qmp::TransformParametersBox& box, std::uint64_t n) const {
        return GetParam() ? qmp::basecase::algorithm32().construct(box, n) : bkt().construct(box, n);
    }
};

TEST_P(BasecaseTransforms, ProductsWithEveryWindow) {
    Random random(26);
    for (std::uint64_t n : {2, 9, 40}) {
        qmp::TransformParametersBox box;
        const qmp::TransformParameters& parameters = construct(box, n);
        for (std::uint64_t total = 2; total <= n; total += 1 + n / 10) {
            const std::uint64_t la = random.between(1, total - 1);
            const Words a = make_words(random, la, Pattern::runs);
            const Words b = make_words(random, total - la, Pattern::ones);
            Words expected = reference_product(a, b);
            expected.resize(n, 0);
            for (std::uint64_t first = 0; first < n; ++first) {
                for (std::uint64_t end = first; end <= n; ++end) {
                    GuardedWords ta(parameters.operand_words), tb(parameters.operand_words);
                    GuardedWords scratch(parameters.scratch_words), result(end - first);
                    const qmp::MultiplyContext context = sequential_context(scratch);
                    parameters.forward(context, ta.data(), a.data(), la);
                    parameters.forward(context, tb.data(), b.data(), total - la);
                    const Words kept = tb.value();
                    parameters.inverse_multiply(context, ta.data(), tb.data(), result.data(), first, end);
                    ASSERT_EQ(result.value(), slice(expected, first, end));
                    ASSERT_EQ(tb.value(), kept);
                    ASSERT_TRUE(ta.guards_intact() && tb.guards_intact() && scratch.guards_intact() &&
                                result.guards_intact());
                }
            }
        }
    }
}

TEST_P(BasecaseTransforms, LongProductsWrapAround) {
    Random random(27);
    for (std::uint64_t n : {5, 20, 40}) {
        qmp::TransformParametersBox box;
        const qmp::TransformParameters& parameters = construct(box, n);
        for (std::uint64_t total = n; total <= 2 * n; ++total) {
            const std::uint64_t la = total - total / 2;
            const std::uint64_t lb = total / 2;
            const Words a = make_words(random, la, Pattern::ones);
            const Words b = make_words(random, lb, Pattern::ones);
            const Words product = reference_product(a, b);
            Words expected = slice(product, 0, n);
            // The top words fall on the bottom; what they carry stays below the valid words.
            const std::uint64_t wrapped = total - n;
            Word carry = 0;
            for (std::uint64_t i = 0; i < wrapped; ++i) {
                const qmp::DoubleWord t = static_cast<qmp::DoubleWord>(expected[i]) + product[n + i] + carry;
                expected[i] = qmp::low_word(t);
                carry = qmp::high_word(t);
            }
            GuardedWords ta(parameters.operand_words), tb(parameters.operand_words);
            GuardedWords scratch(parameters.scratch_words), result(n);
            const qmp::MultiplyContext context = sequential_context(scratch);
            parameters.forward(context, ta.data(), a.data(), la);
            parameters.forward(context, tb.data(), b.data(), lb);
            parameters.inverse_multiply(context, ta.data(), tb.data(), result.data(), 0, n);
            ASSERT_EQ(result.value(), expected) << n << ", " << total;
            ASSERT_TRUE(scratch.guards_intact() && result.guards_intact());
            if (la != lb) continue;
            GuardedWords square(n);
            parameters.forward_for_square(context, ta.data(), a.data(), la);
            parameters.inverse_square(context, ta.data(), square.data(), 0, n);
            ASSERT_EQ(square.value(), expected);
            ASSERT_TRUE(scratch.guards_intact() && square.guards_intact());
        }
    }
}

TEST_P(BasecaseTransforms, EmptyOperands) {
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters = construct(box, 6);
    GuardedWords ta(parameters.operand_words), tb(parameters.operand_words),
        scratch(parameters.scratch_words);
    const qmp::MultiplyContext context = sequential_context(scratch);
    const Words a = {1, 2, 3};
    Words result(6, kelvara_test::garbage);
    parameters.forward(context, ta.data(), a.data(), 3);
    parameters.forward(context, tb.data(), nullptr, 0);
    parameters.inverse_multiply(context, ta.data(), tb.data(), result.data(), 0, 6);
    EXPECT_EQ(result, Words(6, 0));
    result.assign(6, kelvara_test::garbage);
    parameters.inverse_square(context, tb.data(), result.data(), 0, 6);
    EXPECT_EQ(result, Words(6, 0));
}

TEST_P(BasecaseTransforms, AnyTwoLengthsAreCompatible) {
    qmp::TransformParametersBox small_box, large_box, other_box;
    const qmp::TransformParameters& shorter = construct(small_box, 10);
    const qmp::TransformParameters& longer = construct(large_box, 40);
    EXPECT_TRUE(shorter.compatible_with(longer));
    EXPECT_TRUE(longer.compatible_with(shorter));
    EXPECT_TRUE(longer.compatible_with(longer));
    const qmp::TransformParameters& other =
        GetParam() ? bkt().construct(other_box, 10) : qmp::basecase::algorithm32().construct(other_box, 10);
    EXPECT_FALSE(shorter.compatible_with(other));

    Random random(28);
    const Words a = make_words(random, 8);
    const Words b = make_words(random, 30);
    GuardedWords ta(shorter.operand_words), tb(longer.operand_words), result(38);
    GuardedWords scratch(longer.scratch_words);
    const qmp::MultiplyContext context = sequential_context(scratch);
    shorter.forward(context, ta.data(), a.data(), 8);
    longer.forward(context, tb.data(), b.data(), 30);
    longer.inverse_multiply(context, ta.data(), tb.data(), result.data(), 0, 38);
    EXPECT_EQ(result.value(), reference_product(a, b));
    // The shorter object finds its own scratch too short for the longer one's operand.
    GuardedWords small_scratch(shorter.scratch_words);
    EXPECT_THROW(shorter.inverse_square(sequential_context(small_scratch), tb.data(), result.data(), 0, 10),
                 qmp::BufferTooSmallException);
    EXPECT_TRUE(small_scratch.guards_intact());
}

#if GTEST_HAS_DEATH_TEST
TEST_P(BasecaseTransforms, OperandLongerThanTheConvolution) {
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters = construct(box, 6);
    GuardedWords ta(parameters.operand_words), scratch(parameters.scratch_words);
    const Words a(7, 1);
    EXPECT_CRASH(parameters.forward(sequential_context(scratch), ta.data(), a.data(), 7),
                 "Invalid Function Parameters: ");
}
#endif

INSTANTIATE_TEST_SUITE_P(BothKinds, BasecaseTransforms, testing::Bool(),
                         [](const auto& kind) { return kind.param ? "Basic32" : "Basic64"; });

}  // namespace
