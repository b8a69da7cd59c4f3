// Products through the table, on both sides of every threshold.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

#include "errors/exception.h"
#include "multiply/multiply.h"
#include "multiply/trim.h"
#include "support/random_words.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::make_words;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::sequential_context;
using qmp::Word;
using Words = std::vector<Word>;

Words expected_product(const Words& a, const Words& b) {
    Words product = kelvara_test::reference_product(a, b);
#ifdef KELVARA_HAVE_GMP
    Words other(product.size());
    const Words& x = a.size() >= b.size() ? a : b;
    const Words& y = a.size() >= b.size() ? b : a;
    mpn_mul(other.data(), x.data(), static_cast<mp_size_t>(x.size()), y.data(),
            static_cast<mp_size_t>(y.size()));
    EXPECT_EQ(product, other);
#endif
    return product;
}

// How many units of its lowest word `upper` lacks; -1 when it is more than two.
int units_lost(Words upper, const Words& exact) {
    for (int units = 0; units <= 2; ++units) {
        if (upper == exact) return units;
        for (std::size_t i = 0; i < upper.size() && ++upper[i] == 0; ++i) {
        }
    }
    return -1;
}

void check_products(Random& random, std::uint64_t la, std::uint64_t lb) {
    const bool ones = random.between(0, 2) == 0;
    const Words a = make_words(random, la, ones ? Pattern::ones : Pattern::uniform);
    const Words b = make_words(random, lb, ones ? Pattern::ones : Pattern::runs);
    const Words expected = expected_product(a, b);
    GuardedWords scratch(qmp::scratch_words_for(la + lb, 1));
    const qmp::MultiplyContext context = sequential_context(scratch);
    GuardedWords product(la + lb);
    qmp::multiply(context, product.data(), a.data(), la, b.data(), lb);
    ASSERT_EQ(product.value(), expected) << la << " x " << lb;
    ASSERT_TRUE(product.guards_intact() && scratch.guards_intact());

    for (int round = 0; round < 4; ++round) {
        const std::uint64_t skip = random.between(0, la + lb - 1);
        const std::uint64_t end = round % 2 == 0 ? la + lb : random.between(skip + 1, la + lb);
        const Words exact(expected.begin() + static_cast<std::ptrdiff_t>(skip),
                          expected.begin() + static_cast<std::ptrdiff_t>(end));
        for (auto upper_product : {qmp::multiply_upper, qmp::multiply_upper_halved}) {
            GuardedWords upper(end - skip);
            upper_product(context, upper.data(), skip, end, a.data(), la, b.data(), lb);
            ASSERT_NE(units_lost(upper.value(), exact), -1)
                << la << " x " << lb << ", words " << skip << " to " << end;
            ASSERT_TRUE(upper.guards_intact() && scratch.guards_intact());
        }
    }
}

void check_square(Random& random, std::uint64_t la) {
    const Words a = make_words(random, la, la % 2 == 0 ? Pattern::ones : Pattern::uniform);
    const Words expected = expected_product(a, a);
    GuardedWords scratch(qmp::scratch_words_for(2 * la, 1));
    const qmp::MultiplyContext context = sequential_context(scratch);
    for (int round = 0; round < 4; ++round) {
        const std::uint64_t skip = round == 0 ? 0 : random.between(0, 2 * la - 1);
        const std::uint64_t end = round < 2 ? 2 * la : random.between(skip + 1, 2 * la);
        const Words exact(expected.begin() + static_cast<std::ptrdiff_t>(skip),
                          expected.begin() + static_cast<std::ptrdiff_t>(end));
        GuardedWords upper(end - skip);
        qmp::square_upper(context, upper.data(), skip, end, a.data(), la);
        ASSERT_NE(units_lost(upper.value(), exact), -1) << la << ", words " << skip << " to " << end;
        ASSERT_TRUE(upper.guards_intact() && scratch.guards_intact());
    }
}

TEST(Dispatch, ProductsOfTheFirstEntry) {
    Random random(30);
    for (std::uint64_t n = 2; n <= 58; ++n) {
        for (std::uint64_t la = 1; la < n; la += 1 + n / 20) {
            check_products(random, la, n - la);
            if (HasFatalFailure()) return;
        }
        if (n % 2 == 0) check_square(random, n / 2);
    }
}

TEST(Dispatch, BothSidesOfTheTableEdges) {
    const qmp::AlgorithmTable& table = qmp::basic_table_64();
    EXPECT_STREQ(table.get_algorithm(58).key, "BKT");
    EXPECT_STREQ(table.get_algorithm(59).key, "FFT");
    EXPECT_STREQ(table.get_algorithm(10240).key, "FFT");
    EXPECT_STREQ(qmp::basic_table_32().get_algorithm(116).key, "BKT");
    EXPECT_STREQ(qmp::basic_table_32().get_algorithm(117).key, "FFT");
    EXPECT_STREQ(qmp::basic_table_32().get_algorithm(20480).key, "FFT");
    Random random(32);
    for (std::uint64_t la : {1, 2, 20, 29, 30, 57, 58}) {
        for (std::uint64_t n = 57; n <= 61; ++n) {
            if (la < n) check_products(random, la, n - la);
            if (HasFatalFailure()) return;
        }
    }
    for (std::uint64_t la : {29, 30, 31, 600, 5120}) check_square(random, la);
    check_products(random, 5120, 5120);
    check_products(random, 10000, 240);
    check_products(random, 10239, 1);
}

TEST(Dispatch, TransformedProducts) {
    Random random(33);
    for (int round = 0; round < 40; ++round) {
        const std::uint64_t n = random.between(59, round % 8 == 0 ? 3000 : 400);
        check_products(random, random.between(1, n - 1), n - 1);
        check_square(random, random.between(30, 500));
        if (HasFatalFailure()) return;
    }
}

TEST(Dispatch, TwiddleFactorsMustCoverTheProduct) {
    GuardedWords scratch(qmp::scratch_words_for(1000, 1));
    qmp::MultiplyContext context = sequential_context(scratch);
    Random random(34);
    const Words a = make_words(random, 500);
    Words product(1000);
    context.twiddles = nullptr;
    EXPECT_THROW(qmp::multiply(context, product.data(), a.data(), 500, a.data(), 500),
                 qmp::LimitExceededException);
    // The basecase needs none.
    qmp::multiply(context, product.data(), a.data(), 20, a.data(), 20);
    product.resize(40);
    EXPECT_EQ(product, expected_product(Words(a.begin(), a.begin() + 20), Words(a.begin(), a.begin() + 20)));
}

TEST(Dispatch, BeyondTheTable) {
    const std::uint64_t limit = qmp::basic_table_64().largest_product();
    GuardedWords scratch(16);
    const qmp::MultiplyContext context = sequential_context(scratch);
    // The lookup comes first: no word of these is looked at.
    const Words a(1, 1);
    Words product(1);
    EXPECT_THROW(qmp::multiply(context, product.data(), a.data(), limit, a.data(), 1),
                 qmp::LimitExceededException);
    EXPECT_THROW(qmp::multiply_upper(context, product.data(), 0, limit + 1, a.data(), limit, a.data(), 1),
                 qmp::LimitExceededException);
    EXPECT_THROW(qmp::square_upper(context, product.data(), 0, limit + 2, a.data(), limit / 2 + 1),
                 qmp::LimitExceededException);
    qmp::TransformParametersBox box;
    EXPECT_THROW(qmp::construct_transform(box, limit + 1), qmp::LimitExceededException);
    EXPECT_THROW(qmp::construct_transform(box, limit, 1), qmp::LimitExceededException);
    EXPECT_THROW(qmp::iPsize(limit + 1, 1), qmp::LimitExceededException);
}

// Trimming decides the algorithm: the top words of a product beyond the floating-point transform's range are a
// product within it, and no more scratch than that one's is needed.
TEST(Dispatch, TrimmedLengthsAreLookedUp) {
    constexpr std::uint64_t limit = 10240;
    Random random(31);
    const Words a = make_words(random, limit + 20);
    const Words b = make_words(random, 10);
    const Words expected = expected_product(a, b);
    GuardedWords scratch(qmp::scratch_words_for(limit, 1));
    const qmp::MultiplyContext context = sequential_context(scratch);
    Words upper(25);
    qmp::multiply_upper(context, upper.data(), limit + 5, limit + 30, a.data(), limit + 20, b.data(), 10);
    EXPECT_NE(
        units_lost(upper, Words(expected.begin() + static_cast<std::ptrdiff_t>(limit + 5), expected.end())),
        -1);
    qmp::multiply_upper(context, upper.data(), 0, 25, a.data(), limit + 20, b.data(), 10);
    EXPECT_EQ(upper, Words(expected.begin(), expected.begin() + 25));
    qmp::square_upper(context, upper.data(), 0, 25, a.data(), limit + 20);
    const Words low(a.begin(), a.begin() + 25);
    const Words square = expected_product(low, low);
    EXPECT_EQ(upper, Words(square.begin(), square.begin() + 25));
}

TEST(Trim, DropsWhatTheWantedWordsDoNotNeed) {
    const Words a(20), b(12);
    const auto trimmed = [&](std::uint64_t skip, std::uint64_t end) {
        const qmp::UpperProduct<Word> p(skip, end, b.data(), b.size(), a.data(), a.size());
        const qmp::UpperProduct<Word> again(p.skip, p.end, p.a, p.la, p.b, p.lb);
        EXPECT_EQ(again.a, p.a);
        EXPECT_EQ(again.la, p.la);
        EXPECT_EQ(again.b, p.b);
        EXPECT_EQ(again.lb, p.lb);
        EXPECT_EQ(again.skip, p.skip);
        EXPECT_EQ(again.end, p.end);
        return p;
    };
    // The whole product, the longer operand first.
    auto p = trimmed(0, 32);
    EXPECT_EQ(p.a, a.data());
    EXPECT_EQ(p.la, 20u);
    EXPECT_EQ(p.lb, 12u);
    // Up to the shorter length nothing can go.
    p = trimmed(12, 32);
    EXPECT_EQ(p.la, 20u);
    // One word more: the longer operand loses one.
    p = trimmed(13, 32);
    EXPECT_EQ(p.a, a.data() + 1);
    EXPECT_EQ(p.la, 19u);
    EXPECT_EQ(p.lb, 12u);
    EXPECT_EQ(p.skip, 12u);
    EXPECT_EQ(p.end, 31u);
    // Beyond the longer length both lose words.
    p = trimmed(23, 32);
    EXPECT_EQ(p.a, a.data() + 11);
    EXPECT_EQ(p.la, 9u);
    EXPECT_EQ(p.b, b.data() + 3);
    EXPECT_EQ(p.lb, 9u);
    EXPECT_EQ(p.skip, 9u);
    EXPECT_EQ(p.end, 18u);
    // Unwanted top words.
    p = trimmed(0, 15);
    EXPECT_EQ(p.a, a.data());
    EXPECT_EQ(p.la, 15u);
    EXPECT_EQ(p.lb, 12u);
    p = trimmed(31, 32);
    EXPECT_EQ(p.la + p.lb, 2u);
    EXPECT_EQ(p.skip, 1u);
    EXPECT_EQ(p.end, 2u);

    const qmp::UpperSquare<Word> s(25, 40, a.data(), 20);
    EXPECT_EQ(s.a, a.data() + 5);
    EXPECT_EQ(s.la, 15u);
    EXPECT_EQ(s.skip, 15u);
    EXPECT_EQ(s.end, 30u);
    EXPECT_EQ(qmp::UpperSquare<Word>(0, 7, a.data(), 20).la, 7u);
}

TEST(MultiplyContext, TakesScratchInMultiplesOfEightWords) {
    GuardedWords scratch(40);
    const qmp::MultiplyContext context = sequential_context(scratch);
    const qmp::MultiplyContext rest = context.after(9, "Somewhere()");
    EXPECT_EQ(rest.scratch, scratch.data() + 16);
    EXPECT_EQ(rest.scratch_words, 24u);
    EXPECT_EQ(rest.tds, context.tds);
    EXPECT_EQ(context.after(0, "Somewhere()").scratch, scratch.data());
    EXPECT_EQ(rest.after(24, "Somewhere()").scratch_words, 0u);
    try {
        rest.after(25, "Somewhere()");
        ADD_FAILURE();
    } catch (const qmp::BufferTooSmallException& exception) {
        EXPECT_EQ(exception.function(), "Somewhere()");
        EXPECT_EQ(exception.buffer_size(), 24u);
        EXPECT_EQ(exception.required_size(), 32u);
    }
}

}  // namespace
