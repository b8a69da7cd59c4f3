#include "numbers/transformed_operand.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "errors/exception.h"
#include "multiply/multiply.h"
#include "numbers/check_value.h"
#include "support/fatal.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::make_words;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::reference_product;
using kelvara_test::sequential_context;
using qmp::BigFloat;
using qmp::BigFloatTransformR;
using qmp::BigFloatView;
using qmp::ExactFloat;
using qmp::ExactFloatTransformR;
using qmp::ExactFloatView;
using qmp::Word;
using Words = std::vector<Word>;

BigFloatView view(const Words& words, std::int64_t exp, std::uint8_t sign = 1) {
    return {words.data(), words.size(), exp, sign};
}

Words words_of(const BigFloat& number) {
    return {number.T, number.T + number.L};
}

// One convolution length with what its operations take.
struct Convolution {
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters;
    GuardedWords a, b, scratch;
    qmp::MultiplyContext context;

    explicit Convolution(std::uint64_t n)
        : parameters(qmp::construct_transform(box, n)),
          a(parameters.operand_words),
          b(parameters.operand_words),
          scratch(parameters.scratch_words),
          context(sequential_context(scratch)) {}

    bool guards_intact() const { return a.guards_intact() && b.guards_intact() && scratch.guards_intact(); }
};

// a * b by transforms of n words; words from te upward not wanted, at most p + 2 below it.
BigFloat product(Convolution& convolution, GuardedWords& buffer, BigFloatView a, BigFloatView b,
                 std::int64_t te, std::uint64_t p) {
    BigFloatTransformR ta, tb;
    ta.forward(convolution.context, convolution.parameters, convolution.a.data(), a);
    tb.forward(convolution.context, convolution.parameters, convolution.b.data(), b);
    EXPECT_EQ(ta.exp, a.exp);
    EXPECT_EQ(ta.L, a.L);
    EXPECT_EQ(ta.sign, a.sign);
    EXPECT_EQ(ta.parameters, &convolution.parameters);
    BigFloat result(buffer.data(), buffer.size());
    result.T = buffer.data() + 1;  // setters start at the buffer's beginning
    BigFloatTransformR::inverse_fmul(convolution.context, result, ta, tb, te, p);
    EXPECT_EQ(ta.data, nullptr);
    EXPECT_NE(tb.data, nullptr);
    EXPECT_EQ(result.T, buffer.data());
    EXPECT_TRUE(buffer.guards_intact());
    EXPECT_TRUE(convolution.guards_intact());
    return result;
}

TEST(BigFloatTransform, WholeProducts) {
    Random random(40);
    for (int round = 0; round < 300; ++round) {
        const Words a =
            make_words(random, random.between(1, 28), round % 2 ? Pattern::ones : Pattern::uniform);
        const Words b = make_words(random, random.between(1, 28), Pattern::runs);
        const std::uint64_t n = a.size() + b.size();
        const std::int64_t ea = static_cast<std::int64_t>(random.between(0, 100)) - 50;
        const std::int64_t eb = static_cast<std::int64_t>(random.between(0, 100)) - 50;
        const auto sa = static_cast<std::uint8_t>(random.between(0, 1));
        const auto sb = static_cast<std::uint8_t>(random.between(0, 1));
        Convolution convolution(n + random.between(0, 2));
        GuardedWords buffer(n);
        const BigFloat result = product(convolution, buffer, view(a, ea, sa), view(b, eb, sb),
                                        ea + eb + static_cast<std::int64_t>(n), n);
        Words expected = reference_product(a, b);
        if (expected.back() == 0) expected.pop_back();
        ASSERT_EQ(words_of(result), expected);
        ASSERT_EQ(result.exp, ea + eb);
        ASSERT_EQ(result.sign, sa == sb ? 1 : 0);
    }
}

TEST(BigFloatTransform, PrecisionKeepsTwoMoreWordsBelowTe) {
    Random random(41);
    const Words a = make_words(random, 20, Pattern::ones);
    const Words b = make_words(random, 15, Pattern::uniform);
    const Words whole = reference_product(a, b);
    Convolution convolution(40);
    for (std::int64_t te = -10; te <= 45; ++te) {
        for (std::uint64_t p : {0, 1, 5, 20, 33, 34, 60}) {
            // The words of the product, at positions -3 to 32, that lie in [te - p - 2, te).
            const std::int64_t bottom = std::max<std::int64_t>(-3, te - static_cast<std::int64_t>(p) - 2);
            const std::int64_t end = std::min<std::int64_t>(32, te);
            const std::uint64_t count = end > bottom ? static_cast<std::uint64_t>(end - bottom) : 0;
            GuardedWords buffer(count + 2);
            const BigFloat result = product(convolution, buffer, view(a, -7), view(b, 4), te, p);
            Words expected;
            if (count > 0) expected.assign(whole.begin() + (bottom + 3), whole.begin() + (end + 3));
            while (!expected.empty() && expected.back() == 0) expected.pop_back();
            ASSERT_EQ(words_of(result), expected) << te << ", " << p;
            ASSERT_EQ(result.exp, expected.empty() ? 0 : bottom) << te << ", " << p;
            ASSERT_EQ(result.sign, 1);
        }
    }
    // A precision beyond every position.
    GuardedWords buffer(35);
    EXPECT_EQ(product(convolution, buffer, view(a, -7), view(b, 4), 32, ~std::uint64_t{0}).L, 35u);
}

// n = clen + 3 words: the words 3 to n - 4 are valid.
TEST(BigFloatTransform, WrapAroundLeavesTheMiddle) {
    Random random(42);
    for (std::uint64_t clen : {20, 40, 57}) {
        for (std::uint64_t wrapped : {1, 3, 7}) {
            const std::uint64_t n = clen + wrapped;
            const Words a = make_words(random, clen / 2, Pattern::ones);
            const Words b = make_words(random, n - clen / 2, Pattern::ones);
            const Words whole = reference_product(a, b);
            Convolution convolution(clen);
            const auto first = static_cast<std::int64_t>(wrapped);
            const auto end = static_cast<std::int64_t>(n - wrapped);
            GuardedWords buffer(n - 2 * wrapped);
            const BigFloat result =
                product(convolution, buffer, view(a, 100), view(b, -30, 0), 70 + end, 1000);
            EXPECT_EQ(words_of(result), Words(whole.begin() + first, whole.begin() + end));
            EXPECT_EQ(result.exp, 70 + first);
            EXPECT_EQ(result.L, n - 2 * wrapped);
            EXPECT_EQ(result.sign, 0);
            // Fewer words from the top, and a part of the middle.
            GuardedWords part(6);
            const BigFloat below = product(convolution, part, view(a, 100), view(b, -30), 70 + end - 5, 4);
            EXPECT_EQ(words_of(below), Words(whole.begin() + (end - 11), whole.begin() + (end - 5)));
            EXPECT_EQ(below.exp, 70 + end - 11);
            // At or below the lowest valid word nothing is left.
            const BigFloat nothing = product(convolution, part, view(a, 100), view(b, -30), 70 + first, 4);
            EXPECT_EQ(nothing.L, 0u);
            EXPECT_EQ(nothing.exp, 0);
            EXPECT_EQ(nothing.sign, 1);
        }
    }
}

// Floating-point convolutions have a longer cycle than asked for, or exactly the one asked for; then what
// wraps around can carry into the lowest valid word.
TEST(BigFloatTransform, LongProducts) {
    Random random(47);
    for (std::uint64_t clen : {64, 80, 100, 128, 777, 1024}) {
        for (std::uint64_t wrapped : {0, 1, 3, 20}) {
            for (Pattern pattern : {Pattern::ones, Pattern::uniform, Pattern::runs}) {
                const std::uint64_t n = clen + wrapped;
                const Words a = make_words(random, clen / 2, pattern);
                const Words b = make_words(random, n - clen / 2, pattern);
                Convolution convolution(clen);
                const auto end = static_cast<std::int64_t>(n - wrapped);
                GuardedWords buffer(n - 2 * wrapped);
                const BigFloat result = product(convolution, buffer, view(a, 0), view(b, 0), end, n);
                const Words whole = reference_product(a, b);
                Words expected(whole.begin() + static_cast<std::ptrdiff_t>(wrapped),
                               whole.end() - static_cast<std::ptrdiff_t>(wrapped));
                const auto strip = [](Words& words) {
                    while (!words.empty() && words.back() == 0) words.pop_back();
                };
                strip(expected);
                if (wrapped > 0 && words_of(result) != expected) {
                    expected.push_back(0);
                    for (std::size_t i = 0; ++expected[i] == 0; ++i) {
                    }
                    strip(expected);
                }
                ASSERT_EQ(words_of(result), expected) << clen << ", " << wrapped;
                ASSERT_EQ(result.exp, static_cast<std::int64_t>(wrapped));
            }
        }
    }
}

TEST(BigFloatTransform, Squares) {
    Random random(43);
    for (std::uint64_t la : {1, 8, 20, 28}) {
        const Words a = make_words(random, la, Pattern::ones);
        const Words whole = reference_product(a, a);
        for (std::uint64_t clen : {2 * la, 2 * la + 2, 2 * la - la / 4}) {
            const std::uint64_t wrapped = clen < 2 * la ? 2 * la - clen : 0;
            Convolution convolution(clen);
            BigFloatTransformR ta;
            ta.forward_for_square(convolution.context, convolution.parameters, convolution.a.data(),
                                  view(a, -9, 0));
            const std::uint64_t count = 2 * la - 2 * wrapped;
            GuardedWords buffer(count);
            BigFloat result(buffer.data(), count);
            const std::int64_t te = -18 + static_cast<std::int64_t>(2 * la - wrapped);
            BigFloatTransformR::inverse_fsqr(convolution.context, result, ta, te, 100);
            EXPECT_EQ(ta.data, nullptr);
            EXPECT_EQ(words_of(result), Words(whole.begin() + static_cast<std::ptrdiff_t>(wrapped),
                                              whole.begin() + static_cast<std::ptrdiff_t>(wrapped + count)));
            EXPECT_EQ(result.exp, -18 + static_cast<std::int64_t>(wrapped));
            EXPECT_EQ(result.sign, 1);
            EXPECT_TRUE(buffer.guards_intact() && convolution.guards_intact());
        }
    }
}

// Products of this length leave forward()'s transforms begun.
TEST(BigFloatTransform, SquaresOfBegunOperands) {
    constexpr std::uint64_t n = 10'500, length = n / 2;
    kelvara_test::TwiddledContext own(n, qmp::iPsize(n, 1));
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters = qmp::construct_transform(box, n);
    Random random(46);
    const Words a = make_words(random, length);
    const Words whole = reference_product(a, a);
    GuardedWords operand(parameters.operand_words), words(n);

    BigFloatTransformR ta;
    ta.forward(own.context(), parameters, operand.data(), view(a, 0));
    ASSERT_EQ(ta.state, qmp::OperandState::begun);
    BigFloat result(words.data(), n);
    BigFloatTransformR::inverse_fsqr(own.context(), result, ta, n, n);
    EXPECT_EQ(words_of(result), whole);

    ExactFloatTransformR exact;
    exact.forward(own.context(), parameters, operand.data(), {a.data(), length, 0, 1});
    ExactFloat square(words.data(), n);
    ExactFloatTransformR::inverse_fsqr(own.context(), square, exact);
    EXPECT_EQ(Words(square.T, square.T + square.L), whole);
    EXPECT_TRUE(operand.guards_intact() && words.guards_intact());
}

TEST(BigFloatTransform, TopZeroWordsAreStripped) {
    const Words a = {5, 1};
    const Words b = {7};
    Convolution convolution(3);
    GuardedWords buffer(3);
    const BigFloat result = product(convolution, buffer, view(a, 0), view(b, 0), 3, 10);
    EXPECT_EQ(words_of(result), (Words{35, 7}));
    // A window of zeros only.
    const Words sparse = {1, 0, 0, 0, 0, 1};
    Convolution other(7);
    GuardedWords four(4);
    const BigFloat zero = product(other, four, view(sparse, 0), view(b, 0, 0), 5, 2);
    EXPECT_TRUE(zero.is_zero());
    EXPECT_EQ(zero.sign, 1);
    EXPECT_EQ(zero.exp, 0);
}

TEST(BigFloatTransform, ZeroOperand) {
    const Words b = {7, 8};
    Convolution convolution(4);
    GuardedWords buffer(4);
    const BigFloat result = product(convolution, buffer, {nullptr, 0, 0, 1}, view(b, 0, 0), 2, 10);
    EXPECT_TRUE(result.is_zero());
    EXPECT_EQ(result.sign, 1);
}

TEST(BigFloatTransform, CapacityOneShort) {
    Random random(44);
    const Words a = make_words(random, 10);
    Convolution convolution(20);
    Words words(20);
    BigFloat result(words.data(), 15);
    BigFloatTransformR ta, tb;
    const auto expect_thrown = [](const char* function, auto run) {
        try {
            run();
            ADD_FAILURE() << function;
        } catch (const qmp::BufferTooSmallException& exception) {
            EXPECT_EQ(exception.function(), function);
            EXPECT_EQ(exception.buffer_size(), 15u);
            EXPECT_EQ(exception.required_size(), 16u);
        }
    };
    expect_thrown("BigFloatTransformR::inverse_fmul()", [&] {
        ta.forward(convolution.context, convolution.parameters, convolution.a.data(), view(a, 0));
        tb.forward(convolution.context, convolution.parameters, convolution.b.data(), view(a, 0));
        BigFloatTransformR::inverse_fmul(convolution.context, result, ta, tb, 20, 14);
    });
    expect_thrown("BigFloatTransformR::inverse_fsqr()", [&] {
        ta.forward_for_square(convolution.context, convolution.parameters, convolution.a.data(), view(a, 0));
        BigFloatTransformR::inverse_fsqr(convolution.context, result, ta, 20, 14);
    });
    result.AL = 16;
    BigFloatTransformR::inverse_fmul(convolution.context, result, tb, tb, 20, 14);
    EXPECT_GE(result.L, 15u);
}

ExactFloatView exact_view(const Words& words, std::int64_t exp) {
    std::uint64_t hash = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::uint64_t weight = qmp::check_word_weight(exp + static_cast<std::int64_t>(i));
        hash = qmp::check_add(hash, qmp::check_mul(qmp::check_reduce(words[i]), weight));
    }
    return {words.data(), words.size(), exp, hash};
}

void expect_exact(const ExactFloat& result, const Words& expected, std::int64_t exp) {
    EXPECT_EQ(Words(result.T, result.T + result.L), expected);
    EXPECT_EQ(result.exp, exp);
    EXPECT_EQ(result.hash, exact_view(expected, exp).hash);
    EXPECT_EQ(result.T, result.base);
}

TEST(ExactFloatTransform, ProductsAndSquares) {
    Random random(45);
    for (int round = 0; round < 200; ++round) {
        const Words a =
            make_words(random, random.between(1, 28), round % 2 ? Pattern::ones : Pattern::uniform);
        const Words b = make_words(random, random.between(1, 28), Pattern::zeros_then_one);
        const std::uint64_t n = a.size() + b.size();
        Words expected = reference_product(a, b);
        if (expected.back() == 0) expected.pop_back();
        Convolution convolution(n);
        ExactFloatTransformR ta, tb;
        tb.forward(convolution.context, convolution.parameters, convolution.b.data(), exact_view(b, 33));
        for (std::int64_t exp : {std::int64_t{26}, std::int64_t{-11}}) {
            GuardedWords buffer(n);
            ExactFloat result(buffer.data(), n);
            ta.forward(convolution.context, convolution.parameters, convolution.a.data(), exact_view(a, -7));
            if (exp == 26) {
                ExactFloatTransformR::inverse_fmul(convolution.context, result, ta, tb);
            } else {
                ExactFloatTransformR::inverse_fmul(convolution.context, result, ta, tb, exp);
            }
            EXPECT_EQ(ta.data, nullptr);
            EXPECT_NE(tb.data, nullptr);
            expect_exact(result, expected, exp);
            ASSERT_TRUE(buffer.guards_intact() && convolution.guards_intact());
        }

        Words square = reference_product(a, a);
        if (square.back() == 0) square.pop_back();
        Convolution squaring(2 * a.size());
        GuardedWords buffer(2 * a.size());
        ExactFloat result(buffer.data(), buffer.size());
        ta.forward_for_square(squaring.context, squaring.parameters, squaring.a.data(), exact_view(a, -7));
        ExactFloatTransformR::inverse_fsqr(squaring.context, result, ta);
        EXPECT_EQ(ta.data, nullptr);
        expect_exact(result, square, -14);
        ASSERT_TRUE(buffer.guards_intact() && squaring.guards_intact());
        if (HasFailure()) return;
    }
}

TEST(ExactFloatTransform, Failures) {
    Random random(46);
    const Words a = make_words(random, 10);
    const Words b = make_words(random, 9);
    Convolution convolution(18);
    Convolution squaring(19);
    Words words(20);
    ExactFloat result(words.data(), 20);
    ExactFloatTransformR ta, tb, ts;
    const auto expect_invalid = [](const char* function, const char* message, auto run) {
        try {
            run();
            ADD_FAILURE() << function;
        } catch (const qmp::InvalidParametersException& exception) {
            EXPECT_EQ(exception.function(), function);
            EXPECT_EQ(exception.message(), message);
        }
    };
    const auto expect_short = [&](const char* function, std::uint64_t needed, auto run) {
        result.AL = needed - 1;
        try {
            run();
            ADD_FAILURE() << function;
        } catch (const qmp::BufferTooSmallException& exception) {
            EXPECT_EQ(exception.function(), function);
            EXPECT_EQ(exception.buffer_size(), needed - 1);
            EXPECT_EQ(exception.required_size(), needed);
        }
        result.AL = 20;
    };
    ta.forward(convolution.context, convolution.parameters, convolution.a.data(), exact_view(a, 0));
    tb.forward(convolution.context, convolution.parameters, convolution.b.data(), exact_view(b, 0));
    ts.forward_for_square(squaring.context, squaring.parameters, squaring.a.data(), exact_view(a, 0));
    const auto multiply = [&] { ExactFloatTransformR::inverse_fmul(convolution.context, result, ta, tb); };
    const auto multiply_to = [&] {
        ExactFloatTransformR::inverse_fmul(convolution.context, result, ta, tb, 5);
    };
    const auto square = [&] { ExactFloatTransformR::inverse_fsqr(squaring.context, result, ts); };
    const char* too_small = "Convolution length is too small.";
    expect_invalid("ExactFloatTransformR::inverse_fmul()", too_small, multiply);
    expect_invalid("ExactFloatTransformR::inverse_fmul(exp)", too_small, multiply_to);
    expect_invalid("ExactFloatTransformR::inverse_fsqr()", too_small, square);
    expect_short("ExactFloatTransformR::inverse_fmul()", 19, multiply);
    expect_short("ExactFloatTransformR::inverse_fmul(exp)", 19, multiply_to);
    expect_short("ExactFloatTransformR::inverse_fsqr()", 20, square);

    qmp::TransformParametersBox box;
    const auto* algorithm =
        static_cast<const qmp::Algorithm32*>(qmp::find_algorithm("BKT", qmp::WordKind::basic32));
    tb.parameters = &algorithm->construct(box, 19);
    const char* mismatch = "Mismatching Transform Parameters";
    expect_invalid("ExactFloatTransformR::inverse_fmul()", mismatch, multiply);
    expect_invalid("ExactFloatTransformR::inverse_fmul(exp)", mismatch, multiply_to);
}

#if GTEST_HAS_DEATH_TEST
TEST(BigFloatTransformDeath, TruncatedRange) {
    const Words a(20, 1);
    const Words b(23, 1);
    Convolution convolution(40);
    GuardedWords buffer(50);
    // 43 words from position -10: the words from 40 on wrapped, so position 30 is the end.
    EXPECT_FATAL(product(convolution, buffer, view(a, 0), view(b, -10), 31, 100),
                 "ie = 30\n.*te = 31\n\\s*BigFloatTransformR::inverse_fmul\\(\\): Truncated Range\n\n");
    BigFloatTransformR ta;
    ta.forward_for_square(convolution.context, convolution.parameters, convolution.a.data(), view(b, -10));
    BigFloat result(buffer.data(), buffer.size());
    EXPECT_FATAL(BigFloatTransformR::inverse_fsqr(convolution.context, result, ta, 21, 100),
                 "ie = 20\n.*te = 21\n\\s*BigFloatTransformR::inverse_fsqr\\(\\): Truncated Range\n\n");
}

TEST(BigFloatTransformDeath, MismatchingParameters) {
    const Words a(5, 1);
    Convolution convolution(10);
    GuardedWords buffer(10);
    BigFloatTransformR ta, tb;
    ta.forward(convolution.context, convolution.parameters, convolution.a.data(), view(a, 0));
    tb.forward(convolution.context, convolution.parameters, convolution.b.data(), view(a, 0));
    qmp::TransformParametersBox box;
    const auto* algorithm =
        static_cast<const qmp::Algorithm32*>(qmp::find_algorithm("BKT", qmp::WordKind::basic32));
    tb.parameters = &algorithm->construct(box, 10);
    BigFloat result(buffer.data(), buffer.size());
    EXPECT_FATAL(BigFloatTransformR::inverse_fmul(convolution.context, result, ta, tb, 10, 10),
                 "BigFloatTransformR::inverse_fmul\\(\\): Mismatching Transform Parameters");
}

TEST(BigFloatTransformDeath, OperandLongerThanTheConvolution) {
    const Words a(11, 1);
    Convolution convolution(10);
    BigFloatTransformR ta;
    ExactFloatTransformR tx;
    const char* message = "Invalid Function Parameters: ";
    const auto& parameters = convolution.parameters;
    EXPECT_CRASH(ta.forward(convolution.context, parameters, convolution.a.data(), view(a, 0)), message);
    EXPECT_CRASH(ta.forward_for_square(convolution.context, parameters, convolution.a.data(), view(a, 0)),
                 message);
    EXPECT_CRASH(tx.forward(convolution.context, parameters, convolution.a.data(), exact_view(a, 0)),
                 message);
    EXPECT_CRASH(
        tx.forward_for_square(convolution.context, parameters, convolution.a.data(), exact_view(a, 0)),
        message);
}

TEST(BigFloatTransformDeath, ConsumedOperand) {
    const Words a(5, 1);
    Convolution convolution(10);
    GuardedWords buffer(10);
    BigFloat result(buffer.data(), buffer.size());
    BigFloatTransformR ta;
    ta.forward(convolution.context, convolution.parameters, convolution.a.data(), view(a, 0));
    BigFloatTransformR::inverse_fsqr(convolution.context, result, ta, 10, 10);
    EXPECT_CRASH(BigFloatTransformR::inverse_fsqr(convolution.context, result, ta, 10, 10),
                 "Invalid Function Parameters: BigFloatTransformR::inverse_fsqr\\(\\)");
    EXPECT_CRASH(BigFloatTransformR::inverse_fmul(convolution.context, result, ta, ta, 10, 10),
                 "Invalid Function Parameters: BigFloatTransformR::inverse_fmul\\(\\)");
}
#endif

}  // namespace
