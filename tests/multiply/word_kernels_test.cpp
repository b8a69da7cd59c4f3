#include "multiply/basecase/word_kernels.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "multiply/basecase/double_word.h"
#include "support/random_words.h"

namespace {

using kelvara_test::Pattern;
using kelvara_test::Random;

// The same bits as words of type W.
template <typename W>
std::vector<W> make(Random& random, std::uint64_t n, Pattern pattern) {
    const std::vector<qmp::Word> words = kelvara_test::make_words(random, n, pattern);
    std::vector<W> result(n);
    for (std::uint64_t i = 0; i < n; ++i) result[i] = static_cast<W>(words[i]);
    return result;
}

template <typename W>
class WordKernels : public testing::Test {};
using BothWords = testing::Types<std::uint64_t, std::uint32_t>;
TYPED_TEST_SUITE(WordKernels, BothWords);

TYPED_TEST(WordKernels, AdditionAndSubtractionMatchOneWordAtATime) {
    using W = TypeParam;
    Random random(1);
    for (std::uint64_t n = 0; n <= 21; ++n) {
        for (Pattern pa : kelvara_test::all_patterns) {
            for (Pattern pb : kelvara_test::all_patterns) {
                const auto a = make<W>(random, n, pa);
                const auto b = make<W>(random, n, pb);
                for (bool carry_in : {false, true}) {
                    std::vector<W> expected(n);
                    bool carry = carry_in;
                    for (std::uint64_t i = 0; i < n; ++i) {
                        const W partial = static_cast<W>(a[i] + b[i]);
                        expected[i] = static_cast<W>(partial + carry);
                        carry = partial < a[i] || expected[i] < partial;
                    }
                    std::vector<W> sum(n, static_cast<W>(kelvara_test::garbage));
                    EXPECT_EQ(qmp::add_words(sum.data(), a.data(), b.data(), n, carry_in), carry);
                    EXPECT_EQ(sum, expected);
                    // Taking b away again, in place, gives a and the same carry as a borrow.
                    EXPECT_EQ(qmp::sub_words(sum.data(), sum.data(), b.data(), n, carry_in), carry);
                    EXPECT_EQ(sum, a);
                }
            }
        }
    }
}

TYPED_TEST(WordKernels, FormsWithoutCarryStartFromZero) {
    using W = TypeParam;
    const std::vector<W> ones(5, static_cast<W>(-1));
    const std::vector<W> one = {1, 0, 0, 0, 0};
    std::vector<W> result(5, 7);
    EXPECT_TRUE(qmp::add_words(result.data(), ones.data(), one.data(), 5));
    EXPECT_EQ(result, std::vector<W>(5, 0));
    EXPECT_TRUE(qmp::sub_words(result.data(), result.data(), one.data(), 5));
    EXPECT_EQ(result, ones);
    EXPECT_FALSE(qmp::sub_words(result.data(), ones.data(), one.data(), 5));
}

TYPED_TEST(WordKernels, CarriesRunThroughAndStop) {
    using W = TypeParam;
    const W all = static_cast<W>(-1);
    std::vector<W> words = {all, all, 5, all};
    EXPECT_FALSE(qmp::add_carry(words.data(), 4, true));
    EXPECT_EQ(words, (std::vector<W>{0, 0, 6, all}));
    EXPECT_FALSE(qmp::sub_borrow(words.data(), 4, true));
    EXPECT_EQ(words, (std::vector<W>{all, all, 5, all}));
    EXPECT_TRUE(qmp::add_carry(words.data(), 2, true));
    EXPECT_TRUE(qmp::sub_borrow(words.data(), 2, true));
    EXPECT_FALSE(qmp::add_carry(words.data(), 4, false));
    EXPECT_EQ(words, (std::vector<W>{all, all, 5, all}));
    EXPECT_TRUE(qmp::add_carry(words.data(), 0, true));
    EXPECT_TRUE(qmp::sub_borrow(words.data(), 0, true));
}

TYPED_TEST(WordKernels, SignedCarry) {
    using W = TypeParam;
    const W all = static_cast<W>(-1);
    std::vector<W> words = {all, all};
    EXPECT_EQ(qmp::add_signed_carry(words.data(), 2, 1), 1);
    EXPECT_EQ(words, (std::vector<W>{0, 0}));
    EXPECT_EQ(qmp::add_signed_carry(words.data(), 2, -1), -1);
    EXPECT_EQ(words, (std::vector<W>{all, all}));
    EXPECT_EQ(qmp::add_signed_carry(words.data(), 2, -1), 0);
    EXPECT_EQ(words, (std::vector<W>{static_cast<W>(all - 1), all}));
    EXPECT_EQ(qmp::add_signed_carry(words.data(), 2, 0), 0);
    EXPECT_EQ(qmp::add_signed_carry(words.data(), 1, 3), 1);
    EXPECT_EQ(words, (std::vector<W>{1, all}));
    EXPECT_EQ(qmp::add_signed_carry(words.data(), 1, -2), -1);
    EXPECT_EQ(words, (std::vector<W>{all, all}));
    EXPECT_EQ(qmp::add_signed_carry(words.data(), 0, -1), -1);
    EXPECT_EQ(qmp::add_signed_carry(words.data(), 0, 1), 1);
}

TYPED_TEST(WordKernels, ProductWithAWord) {
    using W = TypeParam;
    const W all = static_cast<W>(-1);
    Random random(2);
    for (std::uint64_t n = 0; n <= 13; ++n) {
        for (Pattern pattern : kelvara_test::all_patterns) {
            const auto a = make<W>(random, n, pattern);
            for (W w : {W{0}, W{1}, all, static_cast<W>(random.next())}) {
                for (W carry_in : {W{0}, all}) {
                    std::vector<W> expected(n);
                    W carry = carry_in;
                    for (std::uint64_t i = 0; i < n; ++i) {
                        const auto t = static_cast<qmp::DoubleOf<W>>(a[i]) * w + carry;
                        expected[i] = static_cast<W>(t);
                        carry = static_cast<W>(t >> qmp::WordTraits<W>::bits);
                    }
                    std::vector<W> product(n, static_cast<W>(kelvara_test::garbage));
                    EXPECT_EQ(qmp::mul_word(product.data(), a.data(), n, w, carry_in), carry);
                    EXPECT_EQ(product, expected);
                }
                // a * w + a * (w' - w) = a * w', and the destination's top carries add up.
                std::vector<W> sum(n);
                const W other = static_cast<W>(all - w);
                const W low = qmp::mul_word(sum.data(), a.data(), n, w);
                const W high = qmp::mul_add_word(sum.data(), a.data(), n, other);
                std::vector<W> whole = a;
                const W top = qmp::mul_word(whole.data(), whole.data(), n, all);
                EXPECT_EQ(sum, whole);
                EXPECT_EQ(static_cast<W>(low + high), top);
            }
        }
    }
}

}  // namespace
