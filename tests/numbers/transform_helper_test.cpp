#include "numbers/transform_helper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "errors/exception.h"
#include "multiply/multiply.h"
#include "numbers/check_value.h"
#include "support/random_words.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::make_words;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::reference_product;
using kelvara_test::sequential_context;
using qmp::BigFloat;
using qmp::BigFloatView;
using qmp::ExactFloat;
using qmp::ExactFloatView;
using qmp::TransformHelper;
using qmp::Word;
using Words = std::vector<Word>;

BigFloatView view(const Words& words, std::int64_t exp, std::uint8_t sign = 1) {
    return {words.data(), words.size(), exp, sign};
}

ExactFloatView exact_view(const Words& words, std::int64_t exp) {
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::uint64_t weight = qmp::check_word_weight(exp + static_cast<std::int64_t>(i));
        hash = qmp::check_add(hash, qmp::check_mul(qmp::check_reduce(words[i]), weight));
    }
    return {words.data(), words.size(), exp, hash};
}

// The top words of an operand, as many as a product of precision p takes.
Words top_words(const Words& words, std::uint64_t p) {
    return Words(words.end() - static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(p + 2, words.size())),
                 words.end());
}

// Both factors cut, multiplied exactly, and cut to the words that the product keeps.
void expect_truncated_product(const BigFloat& result, const Words& a, std::uint64_t p, const Words& x,
                              std::uint64_t x_precision, std::int64_t top, bool positive) {
    const Words whole = reference_product(top_words(a, p), top_words(x, x_precision));
    Words expected = top_words(whole, p);
    while (!expected.empty() && expected.back() == 0) expected.pop_back();
    const std::uint64_t kept = std::min<std::uint64_t>(p + 2, whole.size());
    EXPECT_EQ(Words(result.T, result.T + result.L), expected);
    EXPECT_EQ(result.exp, top - static_cast<std::int64_t>(kept));
    EXPECT_EQ(result.sign, positive ? 1 : 0);
}

std::uint64_t convolution(std::uint64_t length, std::uint64_t p, std::uint64_t p1, std::uint64_t p2,
                          std::uint64_t lx) {
    return std::min(length, p) + std::min(std::max(p1, p2), lx) + 6;
}

TEST(TransformHelper, TwoProductsOfOnePrecisionOrTwo) {
    Random random(50);
    for (int round = 0; round < 300; ++round) {
        const Words a =
            make_words(random, random.between(1, 24), round % 2 ? Pattern::ones : Pattern::uniform);
        const Words b = make_words(random, random.between(1, 24), Pattern::uniform);
        const Words x = make_words(random, random.between(1, 24), Pattern::ones);
        const std::uint64_t p1 = random.between(1, 26);
        const std::uint64_t p2 = random.between(1, 26);
        const std::uint64_t size = std::max(convolution(a.size(), p1, p1, p2, x.size()),
                                            convolution(b.size(), p2, p1, p2, x.size()));
        GuardedWords scratch(TransformHelper::scratch_words(size, 1));
        GuardedWords first(std::min<std::uint64_t>(p1 + 2, a.size() + x.size()));
        GuardedWords second(std::min<std::uint64_t>(p2 + 2, b.size() + x.size()));
        BigFloat product1(first.data(), first.size());
        BigFloat product2(second.data(), second.size());
        const TransformHelper helper(sequential_context(scratch), product1, p1, product2, p2, view(a, -5, 0),
                                     view(b, 11), view(x, 3, 0));
        const auto top = [](const Words& words, std::int64_t exp) {
            return exp + static_cast<std::int64_t>(words.size());
        };
        expect_truncated_product(product1, a, p1, x, std::max(p1, p2), top(a, -5) + top(x, 3), true);
        expect_truncated_product(product2, b, p2, x, std::max(p1, p2), top(b, 11) + top(x, 3), false);
        ASSERT_TRUE(scratch.guards_intact() && first.guards_intact() && second.guards_intact());
        if (HasFailure()) return;
    }
}

// Convolutions of one size, of two sizes whose transforms are not compatible, and of two algorithms.
TEST(TransformHelper, LongProducts) {
    Random random(54);
    const auto run = [&](std::uint64_t la, std::uint64_t p1, std::uint64_t lb, std::uint64_t p2,
                         std::uint64_t lx, bool compatible) {
        const Words a = make_words(random, la, Pattern::runs);
        const Words b = make_words(random, lb, Pattern::ones);
        const Words x = make_words(random, lx, Pattern::ones);
        const std::uint64_t size1 = convolution(la, p1, p1, p2, lx);
        const std::uint64_t size2 = convolution(lb, p2, p1, p2, lx);
        qmp::TransformParametersBox box1, box2;
        EXPECT_EQ(
            qmp::construct_transform(box1, size1).compatible_with(qmp::construct_transform(box2, size2)),
            compatible);
        GuardedWords scratch(TransformHelper::scratch_words(std::max(size1, size2), 1));
        GuardedWords first(std::min(p1 + 2, la + lx));
        GuardedWords second(std::min(p2 + 2, lb + lx));
        BigFloat product1(first.data(), first.size());
        BigFloat product2(second.data(), second.size());
        const TransformHelper helper(sequential_context(scratch), product1, p1, product2, p2, view(a, 0),
                                     view(b, 0, 0), view(x, 0));
        expect_truncated_product(product1, a, p1, x, std::max(p1, p2), static_cast<std::int64_t>(la + lx),
                                 true);
        expect_truncated_product(product2, b, p2, x, std::max(p1, p2), static_cast<std::int64_t>(lb + lx),
                                 false);
        EXPECT_TRUE(scratch.guards_intact() && first.guards_intact() && second.guards_intact());

        GuardedWords exact_scratch(TransformHelper::scratch_words(std::max(la, lb) + lx, 1));
        Words exact1(la + lx), exact2(lb + lx);
        ExactFloat e1(exact1.data(), exact1.size());
        ExactFloat e2(exact2.data(), exact2.size());
        const TransformHelper exact(sequential_context(exact_scratch), e1, e2, exact_view(a, 0),
                                    exact_view(b, 0), exact_view(x, 0));
        EXPECT_EQ(exact1, reference_product(a, x));
        EXPECT_EQ(exact2, reference_product(b, x));
        EXPECT_EQ(e1.hash, exact_view(exact1, 0).hash);
        EXPECT_EQ(e2.hash, exact_view(exact2, 0).hash);
        EXPECT_TRUE(exact_scratch.guards_intact());
    };
    run(300, 400, 299, 400, 200, true);
    run(300, 250, 290, 250, 400, true);
    run(500, 500, 100, 500, 300, false);
    run(100, 40, 500, 500, 300, false);
    run(5, 500, 100, 500, 20, false);
    run(100, 500, 5, 500, 20, false);
}

TEST(TransformHelper, ZeroOperands) {
    const Words a = {1, 2, 3};
    const Words x = {5, 6};
    const BigFloatView zero = {nullptr, 0, 0, 1};
    GuardedWords scratch(TransformHelper::scratch_words(20, 1));
    const qmp::MultiplyContext context = sequential_context(scratch);
    Words first(5, kelvara_test::garbage), second(5, kelvara_test::garbage);
    const auto products = [&](BigFloatView va, BigFloatView vb, BigFloatView vx) {
        BigFloat p1(first.data(), 5), p2(second.data(), 5);
        p1.L = p2.L = 99;
        const TransformHelper helper(context, p1, 8, p2, 8, va, vb, vx);
        return std::pair(p1, p2);
    };
    auto [p1, p2] = products(zero, view(a, 0), view(x, 0));
    EXPECT_TRUE(p1.is_zero());
    EXPECT_EQ(Words(p2.T, p2.T + p2.L), (Words{5, 16, 27, 18}));
    std::tie(p1, p2) = products(view(a, 0), zero, view(x, 0));
    EXPECT_EQ(Words(p1.T, p1.T + p1.L), (Words{5, 16, 27, 18}));
    EXPECT_TRUE(p2.is_zero());
    std::tie(p1, p2) = products(view(a, 0), view(a, 0), zero);
    EXPECT_TRUE(p1.is_zero() && p2.is_zero());
    EXPECT_EQ(p1.sign, 1);
}

TEST(TransformHelper, ExactProducts) {
    Random random(51);
    for (int round = 0; round < 200; ++round) {
        const Words a = make_words(random, random.between(1, 28), Pattern::ones);
        const Words b = make_words(random, random.between(1, 28), Pattern::runs);
        const Words x = make_words(random, random.between(1, 28), Pattern::ones);
        GuardedWords scratch(TransformHelper::scratch_words(std::max(a.size(), b.size()) + x.size(), 1));
        GuardedWords first(a.size() + x.size());
        GuardedWords second(b.size() + x.size());
        ExactFloat product1(first.data(), first.size());
        ExactFloat product2(second.data(), second.size());
        const TransformHelper helper(sequential_context(scratch), product1, product2, exact_view(a, 6),
                                     exact_view(b, -4), exact_view(x, 1));
        const auto check = [&](const ExactFloat& result, const Words& operand, std::int64_t exp) {
            Words expected = reference_product(operand, x);
            if (expected.back() == 0) expected.pop_back();
            EXPECT_EQ(Words(result.T, result.T + result.L), expected);
            EXPECT_EQ(result.exp, exp);
            EXPECT_EQ(result.hash, exact_view(expected, exp).hash);
        };
        check(product1, a, 7);
        check(product2, b, -3);
        ASSERT_TRUE(scratch.guards_intact() && first.guards_intact() && second.guards_intact());
        if (HasFailure()) return;
    }
}

// What two transformed operands and one operation take is within the announced scratch, at every length.
TEST(TransformHelper, AnnouncedScratchIsABound) {
    std::uint64_t previous = 0;
    const std::uint64_t limit = qmp::basic_table_64().largest_product();
    for (std::uint64_t n = 2; n <= limit; n += n < 500 ? 1 : std::max<std::uint64_t>(17, n / 40)) {
        qmp::TransformParametersBox box;
        const qmp::TransformParameters& parameters = qmp::construct_transform(box, n);
        const std::uint64_t words = TransformHelper::scratch_words(n, 1);
        ASSERT_LE(2 * parameters.operand_words + parameters.scratch_words, words) << n;
        ASSERT_GE(words, previous) << n;
        previous = words;
    }
}

TEST(TransformHelper, ScratchOneWordShort) {
    Random random(52);
    const Words a = make_words(random, 12);
    const Words x = make_words(random, 20);
    Words first(40), second(40);
    const auto run = [&](const qmp::MultiplyContext& context, bool exact) {
        if (exact) {
            ExactFloat p1(first.data(), 40), p2(second.data(), 40);
            const TransformHelper helper(context, p1, p2, exact_view(a, 0), exact_view(a, 0),
                                         exact_view(x, 0));
        } else {
            BigFloat p1(first.data(), 40), p2(second.data(), 40);
            const TransformHelper helper(context, p1, 50, p2, 50, view(a, 0), view(a, 0), view(x, 0));
        }
    };
    for (bool exact : {false, true}) {
        qmp::TransformParametersBox box;
        const auto& parameters = qmp::construct_transform(box, exact ? 32 : 38);
        const std::uint64_t needed = 2 * parameters.operand_words + parameters.scratch_words;
        GuardedWords scratch(needed);
        run(sequential_context(scratch), exact);
        EXPECT_TRUE(scratch.guards_intact());
        qmp::MultiplyContext context = sequential_context(scratch);
        context.scratch_words = needed - 1;
        try {
            run(context, exact);
            ADD_FAILURE();
        } catch (const qmp::BufferTooSmallException& exception) {
            EXPECT_EQ(exception.function(), "TransformHelper::TransformHelper()");
            EXPECT_EQ(exception.buffer_size(), needed - 1);
            EXPECT_EQ(exception.required_size(), needed);
        }
    }
}

TEST(TransformHelper, DestinationOneWordShort) {
    Random random(53);
    const Words a = make_words(random, 12, Pattern::ones);
    GuardedWords scratch(TransformHelper::scratch_words(40, 1));
    Words first(24), second(24);
    BigFloat p1(first.data(), 12), p2(second.data(), 11);
    EXPECT_THROW(
        TransformHelper(sequential_context(scratch), p1, 10, p2, 10, view(a, 0), view(a, 0), view(a, 0)),
        qmp::BufferTooSmallException);
    ExactFloat e1(first.data(), 24), e2(second.data(), 23);
    EXPECT_THROW(TransformHelper(sequential_context(scratch), e1, e2, exact_view(a, 0), exact_view(a, 0),
                                 exact_view(a, 0)),
                 qmp::BufferTooSmallException);
}

}  // namespace
