// Every table of schoolbook kernels that this machine runs, against a product formed one word at a time and
// against GMP.
#include "multiply/basecase/schoolbook_kernels.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

#include "multiply/basecase/schoolbook.h"
#include "multiply/word.h"
#include "support/random_words.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::make_words;
using kelvara_test::Pattern;
using kelvara_test::Random;
using qmp::Word;
using Words = std::vector<Word>;

Words reference_product(const Words& a, const Words& b) {
    Words result(a.size() + b.size(), 0);
    for (std::size_t j = 0; j < b.size(); ++j) {
        Word carry = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const qmp::DoubleWord t = static_cast<qmp::DoubleWord>(a[i]) * b[j] + result[i + j] + carry;
            result[i + j] = static_cast<Word>(t);
            carry = static_cast<Word>(t >> 64);
        }
        result[a.size() + j] = carry;
    }
    return result;
}

struct Table {
    const char* name;
    const qmp::SchoolbookKernels* kernels;
    bool supported;
};

class SchoolbookKernels : public testing::TestWithParam<Table> {
  protected:
    void SetUp() override {
        if (!GetParam().supported) GTEST_SKIP() << GetParam().name << " is not supported here";
    }

    void expect_product(const Words& a, const Words& b) const {
        GuardedWords product(a.size() + b.size());
        GetParam().kernels->multiply(product.data(), a.data(), a.size(), b.data(), b.size());
        ASSERT_EQ(product.value(), reference_product(a, b)) << a.size() << " x " << b.size();
        ASSERT_TRUE(product.guards_intact()) << a.size() << " x " << b.size();
    }

    void expect_square(const Words& a) const {
        GuardedWords square(2 * a.size());
        GetParam().kernels->square(square.data(), a.data(), a.size());
        ASSERT_EQ(square.value(), reference_product(a, a)) << a.size();
        ASSERT_TRUE(square.guards_intact()) << a.size();
    }
};

// Past three blocks of the widest kernel in both operands.
TEST_P(SchoolbookKernels, EveryPairOfLengths) {
    Random random(31);
    for (std::uint64_t la = 1; la <= 24; ++la) {
        for (std::uint64_t lb = 1; lb <= 24; ++lb) {
            expect_product(make_words(random, la, Pattern::ones), make_words(random, lb, Pattern::ones));
            expect_product(make_words(random, la, Pattern::runs), make_words(random, lb, Pattern::runs));
            expect_product(make_words(random, la, Pattern::uniform), make_words(random, lb, Pattern::ones));
            expect_product(make_words(random, la, Pattern::uniform),
                           make_words(random, lb, Pattern::uniform));
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(SchoolbookKernels, LongByShort) {
    Random random(32);
    for (std::uint64_t lb : {1, 2, 5, 7, 8, 13, 29}) {
        for (std::uint64_t la : {64, 257}) {
            expect_product(make_words(random, la, Pattern::ones), make_words(random, lb, Pattern::ones));
            expect_product(make_words(random, lb, Pattern::uniform), make_words(random, la, Pattern::runs));
        }
    }
}

TEST_P(SchoolbookKernels, Squares) {
    Random random(33);
    for (std::uint64_t n = 1; n <= 40; ++n) {
        for (Pattern pattern : kelvara_test::all_patterns) expect_square(make_words(random, n, pattern));
        if (HasFatalFailure()) return;
    }
}

#ifdef KELVARA_HAVE_GMP
TEST_P(SchoolbookKernels, AgainstGmp) {
    Random random(34);
    for (std::uint64_t n = 1; n <= 40; ++n) {
        for (int round = 0; round < 20; ++round) {
            const Words a = make_words(random, n, Pattern::runs), b = make_words(random, n, Pattern::uniform);
            Words expected(2 * n), result(2 * n);
            mpn_mul_n(expected.data(), a.data(), b.data(), static_cast<mp_size_t>(n));
            GetParam().kernels->multiply(result.data(), a.data(), n, b.data(), n);
            ASSERT_EQ(result, expected) << n;
            mpn_sqr(expected.data(), a.data(), static_cast<mp_size_t>(n));
            GetParam().kernels->square(result.data(), a.data(), n);
            ASSERT_EQ(result, expected) << n;
        }
    }
}
#endif

INSTANTIATE_TEST_SUITE_P(Tables, SchoolbookKernels,
                         testing::Values(Table{"Plain", &qmp::schoolbook_plain, true},
                                         Table{"Adx", &qmp::schoolbook_adx, qmp::schoolbook_adx_supported()}),
                         [](const auto& table) { return std::string(table.param.name); });

// A product of an operand by itself may take the way of squares.
TEST(Schoolbook, ProductOfAnOperandByItself) {
    Random random(35);
    for (std::uint64_t n = 1; n <= 40; ++n) {
        const Words a = make_words(random, n, Pattern::runs), same = a;
        Words product(2 * n), square(2 * n), by_itself(2 * n);
        qmp::mulB(product.data(), a.data(), n, same.data(), n);
        qmp::mulB(by_itself.data(), a.data(), n, a.data(), n);
        qmp::sqrB(square.data(), a.data(), n);
        EXPECT_EQ(by_itself, product) << n;
        EXPECT_EQ(square, product) << n;
    }
}

}  // namespace
